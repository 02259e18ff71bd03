// The command's messages to people, apart from the data.
#pragma once

#include <string>

namespace cli {

/// Prints "usbinfo: " and `message` on one line of standard error. A very long message loses its middle,
/// since its end says what to do.
void PrintMessage(const std::string& message);

}  // namespace cli
