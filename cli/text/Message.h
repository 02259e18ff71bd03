// The commands' messages to people, apart from the data.
#pragma once

#include <string>

namespace cli {

/// The name that this process prints before its messages from now on; "usbinfo" until then.
void NameProgram(const std::string& name);

/// `message`; where it has more than 2000 bytes, without its middle, since its end says what to do.
std::string Shortened(const std::string& message);

/// Prints the program's name and the shortened `message` on one line of standard error.
void PrintMessage(const std::string& message);

}  // namespace cli
