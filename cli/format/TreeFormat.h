// The inventory as a tree for people: each controller, its root hub, every port with its state, what is
// plugged in, speed and vendor:product.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// Fits a terminal's width, and draws with ASCII where the locale has no UTF-8.
std::string RenderTree(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
