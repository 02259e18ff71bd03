// The inventory as a graph for Graphviz, drawn from left to right: a node per controller, hub, used socket
// and device, and one for all empty sockets of a hub.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// A digraph in the DOT language, in UTF-8; without nodes for an empty inventory. Nodes are named n0, n1,
/// ..., the empty sockets of n0 are f0; sockets have the tree's order. The SVG classes are controller, hub,
/// port or device; ports also have used, free or unknown.
std::string RenderDot(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
