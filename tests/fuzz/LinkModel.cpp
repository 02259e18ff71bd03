#include "tests/fuzz/LinkModel.h"

#include <cstdio>
#include <map>

#include "tests/fuzz/ReadPath.h"
#include "tests/fuzz/Utf8.h"

using cli::PropertyId;

namespace usbinfo_test {

namespace {

void AddItems(std::vector<LinkedItem>& items, const char* kind, const std::vector<cli::Item>& ofKind) {
  for (const cli::Item& item : ofKind) items.push_back({kind, &item});
}

void LinkRootHubs(std::vector<LinkedItem>& items) {
  std::map<std::string, std::size_t> controllers;
  for (std::size_t index = 0; index < items.size(); ++index) {
    const std::string identifier = items[index].item->String(PropertyId::kDeviceID);
    if (items[index].kind == "controller") controllers.emplace(identifier, index);
    const auto controller = controllers.find(identifier);
    if (items[index].kind != "hub" || controller == controllers.end()) continue;
    items[index].parent = controller->second;
    items[index].isRootHub = true;
  }
}

void Link(std::vector<LinkedItem>& items, const std::vector<cli::Item>& links) {
  std::map<std::string, std::size_t> byPath;
  for (std::size_t index = 0; index < items.size(); ++index) {
    byPath.emplace(PathTextOf(*items[index].item), index);
  }
  for (const cli::Item& link : links) {
    const auto parent = byPath.find(link.String(PropertyId::kAntecedent));
    const auto child = byPath.find(link.String(PropertyId::kDependent));
    if (parent == byPath.end() || child == byPath.end()) continue;
    LinkedItem& linked = items[child->second];
    if (linked.parent == LinkedItem::kNone) linked.parent = parent->second;
  }
}

}  // namespace

bool LinkedItem::IsFree() const {
  return item->Text(PropertyId::kStatusDescriptions) == "{No device connected}";
}

std::string LinkedItem::Name() const {
  const std::string name = item->String(PropertyId::kDescription);
  return name.empty() || name == "Not Available" ? "(no name)" : AsShown(name);
}

std::string LinkedItem::Id() const {
  char text[sizeof "ffff:ffff"];
  std::snprintf(text, sizeof text, "%04x:%04x", static_cast<unsigned>(item->Number(PropertyId::kVendorID)),
                static_cast<unsigned>(item->Number(PropertyId::kUSBDeviceID)));
  return text;
}

std::vector<LinkedItem> LinkItems(const cli::Inventory& inventory) {
  std::vector<LinkedItem> items;
  AddItems(items, "controller", inventory.Controllers());
  AddItems(items, "hub", inventory.Hubs());
  AddItems(items, "port", inventory.Ports());
  AddItems(items, "device", inventory.Devices());
  LinkRootHubs(items);
  Link(items, inventory.PortsOnHubs());
  Link(items, inventory.Connections());
  return items;
}

std::vector<LinkedItem> ListedItems(const cli::Inventory& inventory) {
  std::vector<LinkedItem> listed;
  for (const LinkedItem& item : LinkItems(inventory)) {
    if (item.kind == "device" || (item.kind == "hub" && !item.isRootHub)) listed.push_back(item);
  }
  return listed;
}

}  // namespace usbinfo_test
