// Compares two items that are the same one in two inventories, property by property.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/diff/PropertyChange.h"

namespace cli {

struct PlacedItem;

/// The names of all that is compared, ascending without regard to case; what differs in case alone is one
/// name.
std::vector<std::string> ComparedProperties();

class PropertyComparison {
 public:
  /// `usesKernel` where both inventories have something from the kernel; `isSysfs` where both come from
  /// sysfs. `ignored` are some of ComparedProperties.
  PropertyComparison(bool usesKernel, bool isSysfs, std::vector<std::string> ignored);

  /// What differs, except what depends on the place alone. What the kernel knows counts where both
  /// inventories have it.
  std::vector<PropertyChange> ChangesOf(const PlacedItem& before, const PlacedItem& after) const;
  bool IsIgnored(std::string_view name) const;

 private:
  void AddProperties(const PlacedItem& before, const PlacedItem& after,
                     std::vector<PropertyChange>& changes) const;
  void AddDeviceFacts(const PlacedItem& before, const PlacedItem& after,
                      std::vector<PropertyChange>& changes) const;
  void Add(PropertyChange change, std::vector<PropertyChange>& changes) const;
  ComparedValue ValueOf(const PlacedItem& placed, PropertyId property) const;

  bool fUsesKernel;
  bool fIsSysfs;
  std::vector<std::string> fIgnored;
};

}  // namespace cli
