// Why there is nothing to show on this machine, and what to do about it.
#pragma once

#include <string>

namespace cli {

/// What can be seen of the places that device lists come from.
struct MachineFacts {
  bool hasUsb = false;
  enum class DebugfsList { kReadable, kForbidden, kMissing } debugfsList = DebugfsList::kMissing;
  bool hasListCommand = false;

  static MachineFacts OfThisMachine();
};

/// One line for the user.
std::string AdviseOnEmptyMachine(const MachineFacts& facts);

}  // namespace cli
