#include "cli/model/UsbTree.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace cli {

namespace {

constexpr std::size_t kNone = UsbTreeNode::kNone;

}  // namespace

UsbTree::UsbTree(const Inventory& inventory) {
  AddNodes(inventory.Controllers());
  AddNodes(inventory.Hubs());
  AddNodes(inventory.Ports());
  AddNodes(inventory.Devices());
  LinkRootHubs();
  LinkItems(inventory);
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    if (fNodes[index].parent != kNone) continue;
    fTop.push_back(index);
    Descend(index);
  }
  if (fTopDown.size() < fNodes.size()) UnlinkCircles();
}

const UsbTreeNode& UsbTree::Shown(const UsbTreeNode& node) const {
  return node.Class() == ClassId::kPort && node.children.size() == 1 ? fNodes[node.children.front()] : node;
}

std::vector<UsbTreeRow> UsbTree::Rows() const {
  std::vector<UsbTreeRow> rows;
  std::vector<UsbTreeRow> waiting;
  for (auto top = fTop.rbegin(); top != fTop.rend(); ++top) waiting.push_back({*top, 0});
  while (!waiting.empty()) {
    const UsbTreeRow row = waiting.back();
    waiting.pop_back();
    rows.push_back(row);
    const auto& children = Shown(fNodes[row.node]).children;
    const std::size_t depth = std::min(row.depth + 1, kMaxDepth);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      waiting.push_back({*child, depth});
    }
  }
  return rows;
}

void UsbTree::AddNodes(const std::vector<Item>& items) {
  for (const Item& item : items) fNodes.push_back({&item});
}

void UsbTree::Link(std::size_t parent, std::size_t child) {
  if (fNodes[child].parent != kNone || fNodes[child].Class() == ClassId::kController) return;
  fNodes[child].parent = parent;
  fNodes[parent].children.push_back(child);
}

/// A controller and its root hub carry the same identifier.
void UsbTree::LinkRootHubs() {
  std::unordered_map<std::string, std::size_t> hubs;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    const UsbTreeNode& node = fNodes[index];
    if (node.Class() == ClassId::kHub) hubs.emplace(node.item->String(PropertyId::kDeviceID), index);
  }
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    if (fNodes[index].Class() != ClassId::kController) continue;
    const auto hub = hubs.find(fNodes[index].item->String(PropertyId::kDeviceID));
    if (hub == hubs.end()) continue;
    fNodes[hub->second].isRootHub = true;
    Link(index, hub->second);
  }
}

void UsbTree::LinkItems(const Inventory& inventory) {
  if (inventory.PortsOnHubs().empty() && inventory.Connections().empty()) return;
  std::unordered_map<std::string, std::size_t> byPath;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    byPath.emplace(fNodes[index].item->Path(), index);
  }
  for (const auto* const links : {&inventory.PortsOnHubs(), &inventory.Connections()}) {
    for (const Item& link : *links) {
      const auto parent = byPath.find(link.String(PropertyId::kAntecedent));
      const auto child = byPath.find(link.String(PropertyId::kDependent));
      if (parent != byPath.end() && child != byPath.end()) Link(parent->second, child->second);
    }
  }
}

void UsbTree::Descend(std::size_t top) {
  std::vector<std::size_t> waiting = {top};
  while (!waiting.empty()) {
    UsbTreeNode& node = fNodes[waiting.back()];
    fTopDown.push_back(waiting.back());
    waiting.pop_back();
    const Place* const above = node.parent == kNone ? nullptr : &fNodes[node.parent].place;
    node.isPlacedBelowParent = above != nullptr && node.place.Continue(*above, *node.item);
    if (!node.isPlacedBelowParent) node.place = Place::OfTop(*node.item);
    waiting.insert(waiting.end(), node.children.rbegin(), node.children.rend());
  }
}

/// Nodes that were not reached from the top are linked in a circle, or are below one.
void UsbTree::UnlinkCircles() {
  std::vector<bool> isReached(fNodes.size(), false);
  for (const std::size_t index : fTopDown) isReached[index] = true;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    if (isReached[index]) continue;
    UsbTreeNode& node = fNodes[index];
    node.parent = kNone;
    node.children.clear();
    node.place = Place::OfTop(*node.item);
    fTop.push_back(index);
    fTopDown.push_back(index);
  }
}

}  // namespace cli
