// The machines of a store checked against a policy, one after the other, and the forms of the result.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>

#include "cli/policy/PolicyCheck.h"
#include "store/Database.h"
#include "store/TimeText.h"

namespace store {

/// A host whose report was checked, or could not be.
struct HostCheck {
  std::string host;
  /// When the report was collected.
  Seconds collected = 0;
  /// Whether a device may have forged lines of it.
  bool isSuspect = false;
  /// Null where the report could not be checked.
  const cli::CheckedInventory* checked = nullptr;
  /// Why it could not be.
  std::string failure;
};

struct HostTotals {
  std::size_t hosts = 0;
  /// Hosts that could not be checked.
  std::size_t failed = 0;
  /// Hosts with a device that is not allowed.
  std::size_t refused = 0;
  std::size_t devices = 0;
  std::size_t refusedDevices = 0;
};

/// Makes the output of the checks. It keeps what is printed, and nothing of the inventories.
class HostChecks {
 public:
  HostChecks() = default;
  HostChecks(const HostChecks&) = delete;
  HostChecks& operator=(const HostChecks&) = delete;
  virtual ~HostChecks() = default;

  /// For people: as `usbinfo check` prints them, each line with its host; nothing where all is allowed.
  static std::unique_ptr<HostChecks> AsText(const cli::Policy& policy);
  /// For programs: schema "usbinfo.checks/1", with all hosts, and each device that is not allowed. `policy`
  /// must outlive both.
  static std::unique_ptr<HostChecks> AsJson(const cli::Policy& policy);

  virtual void Add(const HostCheck& check) = 0;
  /// To be called once.
  virtual std::string Take(const HostTotals& totals) = 0;
};

/// The time at which the last reports count.
inline constexpr Seconds kLastReports = std::numeric_limits<Seconds>::max();

struct CheckSettings {
  const cli::Policy& policy;
  /// The last report of each host that was collected by then counts.
  Seconds at = kLastReports;
  bool allowsSuspect = false;
};

/// Checks all hosts that have a report, by their names, in the transaction of the caller. Holds one inventory
/// at a time. Throws DatabaseError.
HostTotals CheckHosts(Database& database, const CheckSettings& settings, HostChecks& checks);

}  // namespace store
