#include "tests/fuzz/LinkModel.h"

#include <cstdio>
#include <map>

#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

void AddItems(std::vector<LinkedItem>& items, const char* kind,
              const std::vector<cli::InstanceView>& instances) {
  for (const cli::InstanceView& instance : instances) items.push_back({kind, &instance});
}

void LinkRootHubs(std::vector<LinkedItem>& items) {
  std::map<std::string, std::size_t> controllers;
  for (std::size_t index = 0; index < items.size(); ++index) {
    const std::string identifier = items[index].instance->Text("DeviceID");
    if (items[index].kind == "controller") controllers.emplace(identifier, index);
    const auto controller = controllers.find(identifier);
    if (items[index].kind != "hub" || controller == controllers.end()) continue;
    items[index].parent = controller->second;
    items[index].isRootHub = true;
  }
}

void Link(std::vector<LinkedItem>& items, const std::vector<cli::InstanceView>& links) {
  std::map<std::string, std::size_t> byPath;
  for (std::size_t index = 0; index < items.size(); ++index) {
    byPath.emplace(items[index].instance->PathText(), index);
  }
  for (const cli::InstanceView& link : links) {
    const auto parent = byPath.find(link.Text("Antecedent"));
    const auto child = byPath.find(link.Text("Dependent"));
    if (parent == byPath.end() || child == byPath.end()) continue;
    LinkedItem& item = items[child->second];
    if (item.parent == LinkedItem::kNone) item.parent = parent->second;
  }
}

}  // namespace

bool LinkedItem::IsFree() const {
  return instance->Text("StatusDescriptions") == "{No device connected}";
}

std::string LinkedItem::Name() const {
  const std::string name = instance->Text("Description");
  return name.empty() || name == "Not Available" ? "(no name)" : AsShown(name);
}

std::string LinkedItem::Id() const {
  char text[sizeof "ffff:ffff"];
  std::snprintf(text, sizeof text, "%04x:%04x", static_cast<unsigned>(instance->Number("VendorID")),
                static_cast<unsigned>(instance->Number("USBDeviceID")));
  return text;
}

std::vector<LinkedItem> LinkItems(const cli::Inventory& inventory) {
  std::vector<LinkedItem> items;
  AddItems(items, "controller", inventory.InstancesOf("KALDO_USBController"));
  AddItems(items, "hub", inventory.InstancesOf("KALDO_USBHub"));
  AddItems(items, "port", inventory.InstancesOf("KALDO_USBPort"));
  AddItems(items, "device", inventory.InstancesOf("KALDO_USBDevice"));
  LinkRootHubs(items);
  Link(items, inventory.InstancesOf("KALDO_USBPortOnHub"));
  Link(items, inventory.InstancesOf("KALDO_USBConnection"));
  return items;
}

}  // namespace usbinfo_test
