// The command's messages to people, apart from the data.
#pragma once

#include <string>

#include "cli/text/Message.h"

namespace store {

inline constexpr const char* kProgram = "usbinfo-store";

/// On one line of standard error.
inline void PrintMessage(const std::string& message) {
  cli::PrintMessageOf(kProgram, message);
}

}  // namespace store
