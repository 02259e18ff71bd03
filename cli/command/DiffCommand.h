// `usbinfo diff OLD NEW`: what was added, removed, moved and changed between two inventories.
#pragma once

#include "cli/command/DiffOptions.h"

namespace cli {

/// Compares and prints; gives the exit status. Throws UserError when an inventory cannot be read or the
/// difference cannot be written.
int RunDiff(const DiffOptions& options);

}  // namespace cli
