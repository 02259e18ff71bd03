// Links the items of a document and names their places; see the header.
#include "cli/model/SavedTree.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "cli/model/Wording.h"

namespace cli {

namespace {

constexpr std::size_t kNone = SavedNode::kNone;

/// A hub's ports and a machine's buses have few digits; longer ones are no numbers of theirs.
bool ReadNumber(const std::string& text, std::uint32_t& number) {
  constexpr std::size_t kMaxDigits = 9;
  if (text.empty() || text.size() > kMaxDigits) return false;
  if (!std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) return false;
  number = static_cast<std::uint32_t>(std::stoul(text));
  return true;
}

/// Where a place begins: a controller at its bus, all else at the port that it says it is on, which stays
/// when it is plugged in again, or at itself.
Place PlaceOfTop(const SavedItem& item) {
  Place place;
  const std::string own = item.Text("DeviceID");
  if (item.kind == ItemKind::kController && ReadNumber(BusOf(own), place.bus)) {
    place.hasBus = true;
    return place;
  }
  const std::string port = item.kind == ItemKind::kPort ? std::string() : item.Text("PortNumber");
  place.identifier = port.empty() ? own : port;
  return place;
}

}  // namespace

bool Place::operator==(const Place& other) const {
  return hasBus == other.hasBus && bus == other.bus && identifier == other.identifier && ports == other.ports;
}

bool Place::operator<(const Place& other) const {
  return std::tie(other.hasBus, bus, identifier, ports) <
         std::tie(hasBus, other.bus, other.identifier, other.ports);
}

SavedTree::SavedTree(const SavedInventory& inventory) {
  for (const SavedItem& item : inventory.items) fNodes.push_back({&item, PlaceOfTop(item)});
  LinkRootHubs();
  LinkAssociations(inventory.links);
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    if (fNodes[index].parent == kNone) Descend(index);
  }
  TakeApartCircles();
}

void SavedTree::Link(std::size_t parent, std::size_t child) {
  if (fNodes[child].parent != kNone || fNodes[child].item->kind == ItemKind::kController) return;
  fNodes[child].parent = parent;
  fNodes[parent].children.push_back(child);
}

/// A controller and its root hub carry the same identifier.
void SavedTree::LinkRootHubs() {
  std::unordered_map<std::string, std::size_t> hubs;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    const SavedItem& item = *fNodes[index].item;
    if (item.kind == ItemKind::kHub) hubs.emplace(item.Text("DeviceID"), index);
  }
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    const SavedItem& item = *fNodes[index].item;
    if (item.kind != ItemKind::kController) continue;
    const auto hub = hubs.find(item.Text("DeviceID"));
    if (hub != hubs.end()) Link(index, hub->second);
  }
}

void SavedTree::LinkAssociations(const std::vector<SavedLink>& links) {
  std::unordered_map<std::string, std::size_t> byPath;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    byPath.emplace(PathOf(*fNodes[index].item), index);
  }
  for (const SavedLink& link : links) {
    const auto parent = byPath.find(link.antecedent);
    const auto child = byPath.find(link.dependent);
    if (parent != byPath.end() && child != byPath.end()) Link(parent->second, child->second);
  }
}

/// Places all that hangs on `top`, in order.
void SavedTree::Descend(std::size_t top) {
  std::vector<std::size_t> waiting = {top};
  while (!waiting.empty()) {
    const std::size_t index = waiting.back();
    waiting.pop_back();
    GoOnFromParent(fNodes[index]);
    fTopDown.push_back(index);
    const auto& children = fNodes[index].children;
    waiting.insert(waiting.end(), children.rbegin(), children.rend());
  }
}

/// What no top leads to goes round in a circle, or hangs on one: each such item stands by itself.
void SavedTree::TakeApartCircles() {
  std::vector<bool> isPlaced(fNodes.size(), false);
  for (const std::size_t index : fTopDown) isPlaced[index] = true;
  for (std::size_t index = 0; index < fNodes.size(); ++index) {
    if (isPlaced[index]) continue;
    fNodes[index].parent = kNone;
    fNodes[index].children.clear();
    fTopDown.push_back(index);
  }
}

void SavedTree::GoOnFromParent(SavedNode& node) {
  constexpr std::size_t kMaxPorts = 32;
  if (node.parent == kNone) return;
  Place place = fNodes[node.parent].place;
  if (node.item->kind == ItemKind::kPort) {
    std::uint32_t number = 0;
    if (place.ports.size() == kMaxPorts ||
        !ReadNumber(Behind(node.item->Text("DeviceID"), " Port "), number)) {
      return;
    }
    place.ports.push_back(number);
  }
  node.place = std::move(place);
  node.isBelowParent = true;
}

}  // namespace cli
