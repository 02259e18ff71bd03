// Why there is nothing to show on this machine, and what to do about it.
#pragma once

#include <string>

namespace cli {

/// What is known about the places that device lists come from.
struct MachineFacts {
  bool hasUsb = false;
  enum class DebugfsList { kReadable, kForbidden, kMissing } debugfsList = DebugfsList::kMissing;
  bool hasListCommand = false;
  /// The kernel has USB and knows no device, not even a root hub.
  bool hasNoDevices = false;

  static MachineFacts OfThisMachine();
};

/// One line for the user.
std::string AdviseOnEmptyMachine(const MachineFacts& facts);

/// The second half of that line: why no list names a device, and what to do.
std::string ReasonForNoList(const MachineFacts& facts);

}  // namespace cli
