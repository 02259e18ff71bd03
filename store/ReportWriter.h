// Puts a report into the store, as one transaction.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/ChangeWriter.h"
#include "store/Database.h"
#include "store/Report.h"
#include "store/TimeText.h"

namespace store {

enum class Outcome {
  /// The first report of its host, or one that says something new.
  kChanged,
  /// It says what the one before said.
  kUnchanged,
  /// It is in the store already.
  kKnown,
  /// It is older than the host's last one, and was put aside.
  kLate
};

/// What a report may change about its host besides its inventory.
struct Permissions {
  /// The serial numbers may be masked with another key than before, or no longer.
  bool newMask = false;
  /// It may be another machine than before.
  bool newMachine = false;
};

class ReportWriter {
 public:
  /// `now` is when the report arrives. `database` must outlive this.
  ReportWriter(Database& database, Permissions permissions, Seconds now)
      : fDatabase(database), fPermissions(permissions), fNow(now) {}

  /// Throws Refusal where the report contradicts what the store knows of its host, and DatabaseError; the
  /// store is then as before.
  Outcome Write(const Report& report);
  /// Writes the report with this text where it repeats its host's last one, at a later time. Gives the host
  /// then; otherwise writes nothing, and the report is to be read as a whole. Throws DatabaseError; the store
  /// is then as before.
  Text WriteRepeated(const TimelessText& text);

 private:
  struct Host {
    std::int64_t id;
    Text machine;
    Text mask;
  };
  struct LastReport {
    Seconds collected;
    std::int64_t state;
    std::string stateHash;
    Text textHash;
  };

  Outcome WriteIn(const Report& report);
  std::optional<Host> SelectHost(const std::string& name);
  Host LockHost(const std::string& name);
  std::optional<LastReport> SelectLast(const Host& host);
  std::optional<EarlierReport> ReadEarlier(const std::optional<LastReport>& last, const Report& report);
  bool IsKnown(const Host& host, const Report& report);
  Outcome PutAside(const Host& host, const Report& report);
  void CheckMachine(const Host& host, const Report& report) const;
  void CheckMask(const Host& host, const Report& report) const;
  void UpdateHost(const Host& host, const Report& report);
  std::string WriteItems(const Host& host, const Report& report);
  void CloseItems(const Host& host, const std::vector<std::int64_t>& numbers, Seconds until);
  void WriteState(const Host& host, const Report& report, std::int64_t number, const std::string& items);
  void WriteReport(const Host& host, Seconds collected, std::int64_t state);

  Database& fDatabase;
  Permissions fPermissions;
  Seconds fNow;
};

}  // namespace store
