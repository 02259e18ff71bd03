#include "cli/diff/ComparedInventory.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

#include "cli/model/DeviceText.h"
#include "cli/model/FactsByItem.h"
#include "cli/model/PeerPairs.h"

namespace cli {

bool Position::operator<(const Position& other) const {
  return std::tie(anchor, place, bus) < std::tie(other.anchor, other.place, other.bus);
}

ComparedInventory::ComparedInventory(const Inventory& inventory, bool usesKernel, bool usesPeers)
    : fTree(inventory),
      fUsesKernel(usesKernel),
      fUsesPeers(usesPeers),
      fDevices(Count()),
      fPorts(Count()),
      fFirstHalves(Count()),
      fHasSecondHalf(Count(), false),
      fPositions(Count()),
      fPartners(Count(), kNone),
      fInOrder(Count()) {
  FindFacts(inventory);
  FindHalves();
  std::iota(fInOrder.begin(), fInOrder.end(), std::size_t{0});
  std::stable_sort(fInOrder.begin(), fInOrder.end(), [this](std::size_t left, std::size_t right) {
    return Node(left).place < Node(right).place;
  });
  GroupControllers();
}

std::string ComparedInventory::SerialOf(std::size_t node) const {
  return cli::SerialOf(ItemOf(node), fUsesKernel ? fDevices[node] : nullptr);
}

std::size_t ComparedInventory::RootHubOf(std::size_t controller) const {
  const std::vector<std::size_t>& children = Node(controller).children;
  const auto rootHub = std::find_if(children.begin(), children.end(),
                                    [this](std::size_t child) { return Node(child).isRootHub; });
  return rootHub == children.end() ? kNone : *rootHub;
}

void ComparedInventory::CountFrom(const std::vector<std::size_t>& anchors) {
  for (const std::size_t node : fTree.TopDown()) {
    if (Node(node).Class() == ClassId::kController) {
      fPositions[node].anchor = anchors[node];
      if (anchors[node] == kNone) fPositions[node].place = Node(node).place;
    } else {
      fPositions[node] = Node(node).isPlacedBelowParent ? PositionBelow(node, anchors) : PositionAtTop(node);
    }
  }
}

std::size_t ComparedInventory::PeerOf(std::size_t port) const {
  if (fPorts[port] == nullptr || !fPorts[port]->peer) return kNone;
  const auto found = fPortsByName.find(*fPorts[port]->peer);
  return found == fPortsByName.end() ? kNone : found->second;
}

bool ComparedInventory::GoesWithHub(std::size_t node) const {
  const std::size_t parent = Node(node).parent;
  return ItemOf(node).Class() == ClassId::kPort && parent != kNone &&
         ItemOf(parent).Class() == ClassId::kHub && !IsFound(parent);
}

PlacedItem ComparedInventory::PlacedItemOf(std::size_t node) const {
  const auto& children = Node(node).children;
  const auto ports = std::count_if(children.begin(), children.end(), [this](std::size_t child) {
    return ItemOf(child).Class() == ClassId::kPort;
  });
  const bool isHub = ItemOf(node).Class() == ClassId::kHub;
  return {&ItemOf(node),
          fDevices[node],
          fPorts[node],
          Node(node).place,
          NameOf(node),
          isHub && ItemOf(node).Number(PropertyId::kHubDepth) == 0,
          isHub ? static_cast<std::size_t>(ports) : 0};
}

void ComparedInventory::FindFacts(const Inventory& inventory) {
  const FactsByItem facts(inventory);
  for (std::size_t node = 0; node < Count(); ++node) {
    fDevices[node] = facts.OfDevice(ItemOf(node));
    fPorts[node] = facts.OfPort(ItemOf(node));
    if (fPorts[node] != nullptr && fPorts[node]->name) fPortsByName.emplace(*fPorts[node]->name, node);
  }
}

void ComparedInventory::FindHalves() {
  std::iota(fFirstHalves.begin(), fFirstHalves.end(), std::size_t{0});
  if (!fUsesPeers) return;
  const PeerPairs pairs(fTree, fPorts);
  for (std::size_t node = 0; node < Count(); ++node) {
    const std::size_t second = pairs.SecondHalfOf(node);
    if (second == kNone) continue;
    fFirstHalves[second] = node;
    fHasSecondHalf[node] = true;
  }
}

void ComparedInventory::GroupControllers() {
  Groups groups;
  for (const std::size_t node : fInOrder) {
    if (Node(node).Class() == ClassId::kController) AddController(node, groups);
  }
}

void ComparedInventory::AddController(std::size_t node, Groups& groups) {
  const std::size_t rootHub = RootHubOf(node);
  ControllerGroup added = {"", "", Node(node).place.bus, {node}};
  if (rootHub != kNone) {
    added.serial = SerialOf(rootHub);
    added.product = ProductOf(ItemOf(rootHub), fUsesKernel ? fDevices[rootHub] : nullptr);
  }
  std::size_t number = fControllers.size();
  if (!added.serial.empty())
    number = groups.emplace(std::pair(added.serial, added.product), number).first->second;
  if (number == fControllers.size()) {
    fControllers.push_back(std::move(added));
    return;
  }
  ControllerGroup& group = fControllers[number];
  fPositions[node].bus = group.nodes.size();
  group.nodes.push_back(node);
}

Position ComparedInventory::PositionBelow(std::size_t node, const std::vector<std::size_t>& anchors) const {
  const std::size_t parent = Node(node).parent;
  const std::size_t anchor = anchors[parent];
  Position position = anchor == kNone ? fPositions[parent] : Position{anchor, {}, fPositions[parent].bus};
  if (Node(node).Class() == ClassId::kPort) position.place.ports.push_back(PortNumberOf(node));
  if (Node(node).Class() == ClassId::kDevice && IsHalf(parent)) position.bus = 0;
  return position;
}

/// Where nothing leads to an item, as in a selection, the kernel's name still says where it is.
Position ComparedInventory::PositionAtTop(std::size_t node) const {
  const std::optional<Place> named = fUsesKernel ? Place::OfName(NameOf(node)) : std::nullopt;
  return {kNone, named.value_or(Node(node).place), 0};
}

std::uint32_t ComparedInventory::PortNumberOf(std::size_t port) const {
  const UsbTreeNode& first = Node(fFirstHalves[port]);
  return (first.isPlacedBelowParent ? first : Node(port)).place.ports.back();
}

bool ComparedInventory::IsHalf(std::size_t port) const {
  return fHasSecondHalf[port] || fFirstHalves[port] != port;
}

std::string ComparedInventory::NameOf(std::size_t node) const {
  if (Node(node).Class() == ClassId::kController) {
    const std::size_t rootHub = RootHubOf(node);
    return rootHub == kNone ? std::string() : NameOf(rootHub);
  }
  if (fPorts[node] != nullptr) return fPorts[node]->name.value_or("");
  return fDevices[node] == nullptr ? std::string() : fDevices[node]->name.value_or("");
}

}  // namespace cli
