// The command's messages to people, apart from the data.
#pragma once

#include "cli/text/Message.h"

namespace store {

inline constexpr const char* kProgram = "usbinfo-store";

using cli::PrintMessage;

}  // namespace store
