// Masks the serial numbers in a device list before the plug-in reads it, so that neither the inventory nor
// the log ever has them.
#pragma once

#include <string>

#include "cli/collect/SerialMask.h"

namespace cli {

/// `text` with the mask in place of what follows the first "SerialNumber=" of a line, whatever the case of
/// its letters, up to the line's end. Blanks and carriage returns at the line's end are removed; a line that
/// has nothing else there is not changed, nor are the strings of root hubs (see RootHubStrings).
std::string MaskSerials(const std::string& text, const SerialMask& mask);

}  // namespace cli
