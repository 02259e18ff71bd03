#include "cli/policy/PolicyCheckNagios.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <string_view>

#include "cli/model/DeviceText.h"
#include "cli/policy/PolicyCheckText.h"
#include "cli/text/Message.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

struct CheckCounts {
  std::size_t devices = 0;
  std::size_t refused = 0;
  std::size_t findings = 0;
};

std::size_t CountFindings(const CheckedInventory& inventory) {
  const std::optional<Origin>& origin = inventory.inventory->GetOrigin();
  return origin ? origin->findings.size() : 0;
}

CheckCounts CountAll(const std::vector<CheckedInventory>& checked) {
  CheckCounts counts;
  for (const CheckedInventory& inventory : checked) {
    counts.devices += inventory.devices.size();
    counts.refused += inventory.CountNotAllowed();
    counts.findings += CountFindings(inventory);
  }
  return counts;
}

NagiosReport Report(NagiosStatus status, std::string_view text, const std::string& numbers) {
  constexpr std::array<std::string_view, 4> kWords = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
  std::string plain;
  for (const char character : text) {
    if (character == '|') {
      plain += "\\x7c";
    } else {
      plain += character;
    }
  }
  return {.status = status,
          .line = fmt::format("USB {}: {}{}\n", kWords[static_cast<std::size_t>(status)],
                              WithoutMiddle(plain), numbers)};
}

/// The first devices that are not allowed, and how many more there are.
std::string DescribeRefused(const std::vector<CheckedInventory>& checked, std::size_t refused) {
  constexpr std::size_t kMostShown = 3;
  std::string text;
  std::size_t shown = 0;
  for (const CheckedInventory& inventory : checked) {
    const std::string prefix = checked.size() == 1 ? "" : EscapeForDocument(inventory.name) + ": ";
    for (const CheckedDevice& device : inventory.devices) {
      if (device.IsAllowed() || shown == kMostShown) continue;
      text += fmt::format("{} {}{}: {}", shown == 0 ? ":" : ";", prefix, PlaceOf(device.device),
                          DescribeDevice(device.device));
      ++shown;
    }
  }
  return refused > shown ? fmt::format("{}; and {} more", text, refused - shown) : text;
}

}  // namespace

NagiosReport RenderCheckNagios(const std::vector<CheckedInventory>& checked, bool allowsSuspect) {
  const CheckCounts counts = CountAll(checked);
  const bool isSuspect = counts.findings != 0 && !allowsSuspect;
  std::string text =
      counts.devices == 0 ? "no USB device found" : Count(counts.devices, "device") + " allowed";
  if (counts.refused != 0) {
    text = fmt::format("{} of {} not allowed{}", counts.refused, Count(counts.devices, "device"),
                       DescribeRefused(checked, counts.refused));
  }
  if (isSuspect) text += "; a device may have forged lines of the device list";
  const NagiosStatus status = counts.refused != 0 ? NagiosStatus::kCritical
                              : isSuspect         ? NagiosStatus::kWarning
                                                  : NagiosStatus::kOk;
  return Report(status, InCharacterSetOfLocale(text),
                fmt::format(" | devices={};;;0 not_allowed={};;;0 findings={};;;0", counts.devices,
                            counts.refused, counts.findings));
}

NagiosReport RenderNagiosFailure(const std::string& message) {
  return Report(NagiosStatus::kUnknown, EscapeForTerminal(message), "");
}

}  // namespace cli
