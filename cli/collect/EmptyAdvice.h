// Why there is nothing to show on this machine, and what to do about it.
#pragma once

#include <string>

namespace cli {

/// What can be seen of the places that device lists come from.
struct MachineFacts {
  bool hasUsb = false;
  enum class DebugfsList { kReadable, kForbidden, kMissing } debugfsList = DebugfsList::kMissing;
  bool hasListCommand = false;
  /// The kernel has USB and knows of no device, not even of a root hub.
  bool hasNoDevices = false;

  static MachineFacts OfThisMachine();
};

/// One line for the user.
std::string AdviseOnEmptyMachine(const MachineFacts& facts);

/// Its second half: why no list names a device, and what to do.
std::string ReasonForNoList(const MachineFacts& facts);

}  // namespace cli
