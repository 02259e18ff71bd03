// What differs between two inventories: items added, removed, moved to another place and changed. An item is
// recognised by its vendor, product and serial number if it has one, else by its place; docs/comparing.md
// gives the rules.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/diff/PropertyChange.h"
#include "cli/model/Inventory.h"
#include "cli/model/Place.h"

namespace cli {

struct PlacedItem {
  /// Owned by its inventory.
  const Item* item;
  /// What the kernel knows of a hub or device, and of a port, owned by the inventory; null for nothing.
  const DeviceFacts* device;
  const PortFacts* port;
  Place place;
  /// The kernel's name, such as "1-3.1", that of its root hub for a controller; empty where it is not known.
  std::string name;
  bool isRootHub;
  /// Of a hub: how many ports it has in the inventory.
  std::size_t ports;
};

/// The same item in both inventories.
struct ItemChange {
  PlacedItem before;
  PlacedItem after;
  /// What the class has, ascending by name, then what the kernel knows.
  std::vector<PropertyChange> properties;
  /// False for an item that moved and has no serial number, so that only its model says that it is the same.
  bool isCertain = true;
};

/// Which machine an inventory is of, and when it was made.
struct ComparedMachine {
  std::string system;
  std::optional<Origin> origin;
};

/// Every list is in the order of the places; where an item has two, that in `after` counts.
struct InventoryDifference {
  ComparedMachine before;
  ComparedMachine after;
  std::vector<PlacedItem> added;
  std::vector<PlacedItem> removed;
  /// With their changed properties, too.
  std::vector<ItemChange> moved;
  std::vector<ItemChange> changed;

  /// True when nothing differs except perhaps the machines' names and times.
  bool IsEmpty() const { return added.empty() && removed.empty() && moved.empty() && changed.empty(); }
};

/// Both inventories must outlive the difference. `ignored` are names of ComparedProperties, which are not
/// compared. Takes about as long as sorting the items.
InventoryDifference Compare(const Inventory& before, const Inventory& after,
                            const std::vector<std::string>& ignored = {});

}  // namespace cli
