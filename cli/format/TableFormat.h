// The inventory as tables for people: the devices, or a section per class with a row per instance.
#pragma once

#include <string>
#include <vector>

namespace cli {

class Inventory;
struct RenderOptions;

/// Fits a terminal's width, as the tree does. One section of devices; with `options.showsClasses` a section
/// for each class that has instances, with columns of its own or those of `options.columns` that the class
/// has as properties. Empty when no class has one of these.
std::string RenderTable(const Inventory& inventory, const RenderOptions& options);

/// The names of all properties of all classes, ascending, each once.
std::vector<std::string> PropertyNames();

}  // namespace cli
