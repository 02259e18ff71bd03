// The facts about one item beyond its name, for the formats that show details to people.
#pragma once

#include <string>
#include <vector>

#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

struct ItemFact {
  const char* label;
  std::string value;
  /// Something that people search a device by.
  bool isSearched = false;
};

/// The facts of a controller, hub, port or device, in a fixed order; what is not known is left out. `names`
/// holds the names of vendors and products; it may be null.
std::vector<ItemFact> FactsOf(const UsbTreeNode& node, const UsbIds* names);

}  // namespace cli
