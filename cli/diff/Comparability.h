// Whether two inventories can be compared, and what has to be done first.
#pragma once

#include <optional>
#include <string>

#include "cli/model/Inventory.h"
#include "cli/model/Selection.h"

namespace cli {

/// Why the serial numbers of two inventories do not compare, as the end of a sentence such as "a.json and
/// b.json cannot be compared: "; nothing where they do, or where an inventory does not say.
std::optional<std::string> DifferenceOfMasks(const Inventory& before, const Inventory& after);

/// Whether one of them does not say if its serial numbers are masked.
bool IsMaskingUnknown(const Inventory& before, const Inventory& after);

/// What has to be selected of an inventory, so that it compares with one of which a part was selected.
enum class SelectionToApply { kNone, kToOld, kToNew, kImpossible };
SelectionToApply CompareSelections(const Inventory& before, const Inventory& after);

/// The selection by which `inventory`, which has one, was made; nothing where it was selected more than once,
/// so that one selection does not give the same.
std::optional<Selection> SelectionOf(const Inventory& inventory);

}  // namespace cli
