// What one look at the machine has found: what `usbinfo watch` prints at a time.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "cli/watch/PolicyAudit.h"
#include "kernel/Device.h"

namespace cli {

struct InventoryDifference;

struct WatchReport {
  /// From 1 in each run.
  std::uint64_t sequence = 0;
  /// In seconds since 1970.
  std::time_t time = 0;
  /// What differs from the last look. Never null.
  const InventoryDifference* difference = nullptr;
  /// Devices that came and went since the last look, and were seen by neither.
  std::vector<kernel::Device> cameAndWent = {};
  /// The kernel could not keep all events, so that more devices may have come and gone.
  bool hasLosses = false;
  /// Devices that are not allowed, and were not so at the last look; nothing where there is no policy.
  std::optional<std::vector<Refusal>> refusals = std::nullopt;

  /// True when there is nothing to report.
  bool IsEmpty() const;
};

/// What diff prints for people, and a line for each device that came and went or is not allowed.
std::string RenderWatchText(const WatchReport& report, bool isColored);

/// One line, an object of the schema "usbinfo.watch/1"; docs/usbinfo-watch.schema.json describes its form.
/// ASCII only.
std::string RenderWatchJson(const WatchReport& report);

}  // namespace cli
