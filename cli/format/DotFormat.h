// The inventory as a graph for Graphviz: a node per controller, hub, port and device, an edge per link, drawn
// from left to right.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// A digraph in the DOT language, in UTF-8; without nodes for an empty inventory. Nodes are named n0, n1, ...
/// and have the SVG class controller, hub, port or device; ports also have used, free or unknown.
std::string RenderDot(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
