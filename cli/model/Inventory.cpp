#include "cli/model/Inventory.h"

#include <algorithm>
#include <utility>

namespace cli {

Inventory::Inventory(std::string systemName) : fSystemName(std::move(systemName)) {
  for (const schema::ClassSchema& schema : schema::ServedClasses()) fClasses.push_back({&schema, {}});
}

void Inventory::Add(Item item) {
  ItemsOfClass& ofClass = fClasses[static_cast<std::size_t>(item.Class())];
  ofClass.items.push_back(std::move(item));
  ++ofClass.total;
}

bool Inventory::IsEmpty() const {
  return std::all_of(fClasses.begin(), fClasses.end(),
                     [](const ItemsOfClass& ofClass) { return ofClass.items.empty(); });
}

bool Inventory::IsPartial() const {
  return std::any_of(fClasses.begin(), fClasses.end(),
                     [](const ItemsOfClass& ofClass) { return ofClass.items.size() != ofClass.total; });
}

Inventory Inventory::Only(const std::function<bool(const Item&)>& keep) const {
  Inventory part(fSystemName);
  part.fKnowsConnections = fKnowsConnections;
  for (const ItemsOfClass& ofClass : fClasses) {
    ItemsOfClass& kept = part.fClasses[static_cast<std::size_t>(ofClass.schema->id)];
    std::copy_if(ofClass.items.begin(), ofClass.items.end(), std::back_inserter(kept.items), keep);
    kept.total = ofClass.total;
  }
  return part;
}

PortState Inventory::StateOf(const Item& port) const {
  // The plug-in sets this for every port, and changes it when it links a device.
  static const Value kNoDevice = std::vector<std::string>{"No device connected"};
  if (port.Get(PropertyId::kStatusDescriptions) != kNoDevice) return PortState::kUsed;
  return fKnowsConnections ? PortState::kFree : PortState::kUnknown;
}

}  // namespace cli
