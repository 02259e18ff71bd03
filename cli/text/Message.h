// The commands' messages to people, apart from the data.
#pragma once

#include <string>

namespace cli {

/// The name that this process prints before its messages from now on; "usbinfo" until then.
void NameProgram(const std::string& name);

/// `message`; where it has more than 2000 bytes, "[...]" stands for its middle, since its end says what to
/// do. Characters and escapes like "\x7c" stay whole.
std::string WithoutMiddle(const std::string& message);

/// Prints the program's name and `message` without its middle on one line of standard error.
void PrintMessage(const std::string& message);

}  // namespace cli
