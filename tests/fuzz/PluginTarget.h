// The second target: any text through the whole plug-in, and out through every format.
#pragma once

#include <cstddef>
#include <string>

#include "tests/fuzz/LogReader.h"
#include "tests/fuzz/PluginRun.h"

namespace usbinfo_test {

/// How many hubs, ports and devices `text` makes.
std::size_t ItemsIn(const std::string& text);

/// Throws BrokenInvariant unless `run`, made over `text`, left the instances, with every property, and wrote
/// the log lines that the model computes from `text`.
void CheckInventory(const PluginRun& run, const std::string& text);

/// Throws unless what the plug-in and the kernel's records of `text` say together can be saved and read
/// again.
void CheckFacts(const std::string& text);

/// Runs the plug-in over `text`; throws BrokenInvariant where its inventory, an output format or the log is
/// not what it must be, or where a command was run. Lines of the log that are in `known` were looked at
/// before and are left out; the others are added.
void CheckPlugin(const std::string& text, DistinctLines& known);
void CheckPlugin(const std::string& text);

}  // namespace usbinfo_test
