// What there is to say about one item beyond its name, for the formats that show details to people.
#pragma once

#include <string>
#include <vector>

#include "cli/UsbTree.h"

namespace cli {

struct ItemFact {
  const char* label;
  std::string value;
  /// Something that people look a device up by.
  bool isSearched = false;
};

/// The facts of a controller, hub, port or device, in a fixed order; what is not known is left out.
std::vector<ItemFact> FactsOf(const UsbTreeNode& node);

}  // namespace cli
