// The inventory as tables for people: a section per class, a row per instance, and the columns of the class
// or those requested.
#pragma once

#include <string>
#include <vector>

namespace cli {

class Inventory;
struct RenderOptions;

/// Fits a terminal's width, as the tree does. Without `options.columns` each class has its own columns; else
/// they are those of the properties that the class has. Empty when no class with instances has one of them.
std::string RenderTable(const Inventory& inventory, const RenderOptions& options);

/// The names of all properties of all classes, ascending, each once; `options.columns` may hold these.
std::vector<std::string> TableColumnNames();

}  // namespace cli
