// The inventory as JSON Lines, for pipelines: an object per instance and line.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// Lines of `{"host": NAME, "class": CLASS, "path": PATH, "properties": {...}}`, classes and instances in the
/// order of the JSON document. ASCII only; empty for an empty inventory.
std::string RenderJsonLines(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
