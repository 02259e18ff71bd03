// The commands' messages to people, apart from the data.
#pragma once

#include <string>

namespace cli {

/// The name that this process prints before its messages from now on; "usbinfo" until then.
void NameProgram(const std::string& name);

/// Prints the program's name and `message` on one line of standard error. A very long message loses its
/// middle, since its end says what to do.
void PrintMessage(const std::string& message);

}  // namespace cli
