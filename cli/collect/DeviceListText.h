// What can be said of a text without reading it as a device list.
#pragma once

#include <string_view>

namespace cli {

/// Whether there is nothing but blanks and ends of lines: the list of a machine without devices.
bool IsBlank(std::string_view text);

/// Whether a line of `text` begins as those do that begin a device's entry, "T:", blanks before it aside. A
/// text without one is something else than a list, and no machine without devices.
bool LooksLikeDeviceList(std::string_view text);

}  // namespace cli
