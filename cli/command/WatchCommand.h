// `usbinfo watch`: what changes on this machine, as it changes.
#pragma once

#include "cli/command/WatchOptions.h"

namespace cli {

/// Follows this machine until SIGINT, SIGTERM or a limit of the options ends it; gives the exit status. Each
/// report is written to standard output at once. Throws UserError when the events or the baseline cannot be
/// had, when the first look fails, and when a report cannot be written.
int RunWatch(const WatchOptions& options);

}  // namespace cli
