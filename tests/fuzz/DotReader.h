// Reads the graph for Graphviz back.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is a digraph in UTF-8 without anything that a terminal acts on,
/// with one node per controller, hub, port and device that says what it is and what it is called, and one
/// edge per link, in any order.
void CheckDot(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
