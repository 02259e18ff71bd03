#include "cli/model/Inventory.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace cli {

namespace {

using Identifiers = std::unordered_set<std::string>;

void AddIdentifiers(const std::vector<Item>& items, Identifiers& identifiers) {
  for (const Item& item : items) identifiers.insert(item.String(PropertyId::kDeviceID));
}

/// The facts about the items of `inventory`.
KernelFacts FactsAbout(const Inventory& inventory, const KernelFacts& facts) {
  Identifiers devices;
  AddIdentifiers(inventory.Hubs(), devices);
  AddIdentifiers(inventory.Devices(), devices);
  Identifiers ports;
  AddIdentifiers(inventory.Ports(), ports);
  KernelFacts part;
  std::copy_if(facts.devices.begin(), facts.devices.end(), std::back_inserter(part.devices),
               [&](const DeviceFacts& device) { return devices.count(device.device) != 0; });
  std::copy_if(facts.ports.begin(), facts.ports.end(), std::back_inserter(part.ports),
               [&](const PortFacts& port) { return ports.count(port.port) != 0; });
  return part;
}

}  // namespace

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
  part.fOrigin = fOrigin;
  part.fCountsBeforeSelection = fCountsBeforeSelection;
  if (fKernel) part.fKernel = FactsAbout(part, *fKernel);
  return part;
}

PortState Inventory::StateOf(const Item& port) const {
  // The plug-in sets this for every port, and changes it when it links a device.
  static const Value kNoDevice = std::vector<std::string>{"No device connected"};
  if (port.Get(PropertyId::kStatusDescriptions) != kNoDevice) return PortState::kUsed;
  return fKnowsConnections ? PortState::kFree : PortState::kUnknown;
}

}  // namespace cli
