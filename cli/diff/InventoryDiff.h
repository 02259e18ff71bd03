// What differs between two inventories: items added, removed, moved to another port and changed. An item is
// recognised by its vendor, product and serial number if it has one, else by its place; docs/comparing.md
// gives the rules.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/Place.h"

namespace cli {

struct PlacedItem {
  /// Owned by its inventory.
  const Item* item;
  /// What the kernel knows of it, owned by its inventory; null where either inventory has nothing from the
  /// kernel.
  const DeviceFacts* facts;
  Place place;
  /// Of a hub: how many ports it has in the inventory.
  std::size_t ports;
};

/// A property with two values; std::monostate where the item lacks it. The strings of a device are those that
/// it sends, where both inventories have them from the kernel.
struct PropertyChange {
  PropertyId property;
  Value before;
  Value after;
};

/// The same item in both inventories.
struct ItemChange {
  PlacedItem before;
  PlacedItem after;
  /// Ascending by name.
  std::vector<PropertyChange> properties;
};

/// Every list is in the order of the places; where an item has two, that in `after` counts.
struct InventoryDifference {
  std::string oldSystem;
  std::string newSystem;
  std::vector<PlacedItem> added;
  std::vector<PlacedItem> removed;
  /// With their changed properties, too.
  std::vector<ItemChange> moved;
  std::vector<ItemChange> changed;

  /// True when nothing differs except perhaps the systems' names.
  bool IsEmpty() const { return added.empty() && removed.empty() && moved.empty() && changed.empty(); }
};

/// Both inventories must outlive the difference. Takes about as long as sorting their items.
InventoryDifference Compare(const Inventory& before, const Inventory& after);

}  // namespace cli
