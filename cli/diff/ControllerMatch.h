// Finds the host controllers that are the same in two inventories.
#pragma once

#include <cstddef>
#include <vector>

#include "cli/diff/ComparedInventory.h"

namespace cli {

/// For each of `olds` the index of the same controller in `news`, ComparedInventory::kNone for none. The same
/// are those whose root hubs have the same serial number and product, then those with the same serial number,
/// then, where one of them has none, those with the same bus.
std::vector<std::size_t> MatchControllers(const std::vector<ControllerGroup>& olds,
                                          const std::vector<ControllerGroup>& news);

}  // namespace cli
