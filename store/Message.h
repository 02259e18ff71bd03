// The command's messages to people, apart from the data.
#pragma once

#include <string>

#include "cli/text/Message.h"

namespace store {

inline constexpr const char* kProgram = "usbinfo-store";

using cli::PrintMessage;

/// The message for a host that the store does not know.
inline std::string DescribeNoHost(const std::string& host) {
  return "the store has no host " + host + "; usbinfo-store hosts lists them";
}

}  // namespace store
