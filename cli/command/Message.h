// What the command says to people besides the data.
#pragma once

#include <string>

namespace cli {

/// Prints "usbinfo: " and `message` on one line of standard error. Of a message that is longer than a line
/// ought to be, the middle is left out; what to do stands at its end.
void PrintMessage(const std::string& message);

}  // namespace cli
