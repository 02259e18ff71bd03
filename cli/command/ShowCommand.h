// `usbinfo show`, the default: collects an inventory through the plug-in, on the machine or from a given
// device list, and prints it.
#pragma once

#include "cli/command/ShowOptions.h"

namespace cli {

/// Runs the command; gives its exit status. Throws UserError for errors that end the command with status 2.
int RunShow(const ShowOptions& options);

}  // namespace cli
