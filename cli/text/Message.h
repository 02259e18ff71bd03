// The commands' messages to people, apart from the data.
#pragma once

#include <string>
#include <string_view>

namespace cli {

/// Prints the program's name and `message` on one line of standard error. A very long message loses its
/// middle, since its end says what to do.
void PrintMessageOf(std::string_view program, const std::string& message);

}  // namespace cli
