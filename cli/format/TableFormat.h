// The inventory as tables for people: a section per class, a row per instance, columns that suit the class or
// those that were asked for.
#pragma once

#include <string>
#include <vector>

namespace cli {

class Inventory;
struct RenderOptions;

/// Fits a terminal's width, as the tree does. Without `options.columns` the columns are chosen for the class;
/// else they are those properties, as far as the class has them. Empty when no class with instances has one.
std::string RenderTable(const Inventory& inventory, const RenderOptions& options);

/// The names of all properties of all classes, ascending, each once: what `options.columns` may hold.
std::vector<std::string> TableColumnNames();

}  // namespace cli
