// What the user names as input: device lists and saved inventories.
#pragma once

#include <string>

namespace cli {

/// What messages call an input.
std::string NameOfList(const std::string& path);

/// The content of the file at `path`, or of standard input for "-". Throws UserError when it cannot be read
/// or has more than 64 MiB; the message ends in `advice`, which says what to do.
std::string ReadInput(const std::string& path, const std::string& advice);

}  // namespace cli
