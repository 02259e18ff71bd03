// Checks of a text that do not parse it as a device list.
#pragma once

#include <string_view>

namespace cli {

/// Whether the text has only blanks and line ends: the list of a machine without devices.
bool IsBlank(std::string_view text);

/// Whether a line of `text` begins with "T:", after any blanks, as the first line of a device's entry does. A
/// text without such a line is not a device list, not even that of a machine without devices.
bool LooksLikeDeviceList(std::string_view text);

}  // namespace cli
