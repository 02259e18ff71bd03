// The log written in both its formats and read back.
#pragma once

#include <set>

#include "tests/fuzz/PluginRun.h"

namespace usbinfo_test {

/// A log of hundreds of lines has a few dozen different ones; each is looked at once.
using DistinctLines = std::set<LogLine>;

/// Throws BrokenInvariant unless each line of `log` comes out as one line in either format: as text
/// fit for a terminal that can be turned back into the line, as JSON that holds severity and line.
void CheckLog(const DistinctLines& log);

}  // namespace usbinfo_test
