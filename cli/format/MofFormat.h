// The inventory and its class definitions as MOF (DSP0004, DSP0221), compilable as one file: qualifiers,
// classes, instances.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// The qualifier and class declarations alone.
std::string RenderMofSchema();

/// The declarations, then every instance; properties that an instance lacks are not written.
std::string RenderMof(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
