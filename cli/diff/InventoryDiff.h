// What differs between two inventories: things added, removed, moved to another port and changed. A thing is
// known again by its vendor, product and serial number where it has one, else by its place; docs/comparing.md
// gives the rules. Pure: two inventories in, the difference out.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/model/SavedInventory.h"
#include "cli/model/SavedTree.h"

namespace cli {

struct Thing {
  /// Owned by its inventory.
  const SavedItem* item;
  Place place;
  /// Of a hub: how many ports it has in the inventory.
  std::size_t ports;
};

/// A property with two values; null where the thing lacks it.
struct PropertyChange {
  std::string name;
  nlohmann::json before;
  nlohmann::json after;
};

/// The same thing in both inventories.
struct ThingChange {
  Thing before;
  Thing after;
  /// Ascending by name.
  std::vector<PropertyChange> properties;
};

/// Every list is in the order of the places, those of `after` where there are two.
struct InventoryDifference {
  std::string oldSystem;
  std::string newSystem;
  std::vector<Thing> added;
  std::vector<Thing> removed;
  /// With what changed about them, too.
  std::vector<ThingChange> moved;
  std::vector<ThingChange> changed;

  /// True when nothing differs but perhaps the systems' names.
  bool IsEmpty() const { return added.empty() && removed.empty() && moved.empty() && changed.empty(); }
};

/// Both inventories must outlive the difference. Takes about as long as sorting their things does.
InventoryDifference Compare(const SavedInventory& before, const SavedInventory& after);

/// "046d:c52b" of a hub or device; empty for the rest.
std::string IdOf(const SavedItem& item);
/// The product string; empty when there is none.
std::string ProductOf(const SavedItem& item);
/// The serial number; empty when there is none.
std::string SerialOf(const SavedItem& item);

}  // namespace cli
