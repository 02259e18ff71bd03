#include "cli/model/Sockets.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "cli/model/FactsByItem.h"
#include "cli/model/PeerPairs.h"

namespace cli {

namespace {

constexpr std::size_t kNoNode = SocketNode::kNone;
/// Fewer sockets in a row do not share one.
constexpr std::size_t kFewestFolded = 3;

bool HasConnect(const SocketHalf& half, std::string_view word) {
  return half.port != nullptr && half.port->connect == word;
}

PortState StateOf(const SocketHalf& half, const Inventory& inventory) {
  const PortState state = inventory.StateOf(half.GetItem());
  if (half.port == nullptr || state != PortState::kFree) return state;
  if (!half.port->isUsed) return PortState::kUnknown;
  return *half.port->isUsed ? PortState::kUsed : PortState::kFree;
}

SocketState StateOf(const std::vector<SocketHalf>& halves, const Inventory& inventory) {
  const auto isAny = [&](PortState state) {
    return std::any_of(halves.begin(), halves.end(),
                       [&](const SocketHalf& half) { return StateOf(half, inventory) == state; });
  };
  if (isAny(PortState::kUsed)) return SocketState::kUsed;
  const bool isNotUsed = std::all_of(halves.begin(), halves.end(),
                                     [](const SocketHalf& half) { return HasConnect(half, "not used"); });
  if (isNotUsed) return SocketState::kNotUsed;
  return isAny(PortState::kUnknown) ? SocketState::kUnknown : SocketState::kFree;
}

/// The kernel's speed where it is known, in bits per second.
double SpeedOf(const SocketHalf& port) {
  constexpr double kMega = 1000000;
  if (port.hub != nullptr && port.hub->speed) return *port.hub->speed * kMega;
  return static_cast<double>(port.GetItem().Number(PropertyId::kSpeed));
}

double SpeedOf(const SocketNode& socket) {
  double speed = 0;
  for (const SocketHalf& half : socket.halves) speed = std::max(speed, SpeedOf(half));
  return speed;
}

/// May stand in one row with others that are alike.
bool IsFoldable(const SocketNode& node) {
  const bool isEmpty = node.state == SocketState::kFree || node.state == SocketState::kNotUsed;
  return node.Class() == ClassId::kPort && isEmpty && node.children.empty() && !node.name.empty();
}

bool AreAlike(const SocketNode& one, const SocketNode& other) {
  return IsFoldable(other) && one.state == other.state && one.isHardwired == other.isHardwired &&
         SpeedOf(one) == SpeedOf(other);
}

void CountSocket(const SocketNode& socket, SocketCounts& counts) {
  ++counts.sockets;
  counts.free += socket.state == SocketState::kFree ? 1 : 0;
  counts.notUsed += socket.state == SocketState::kNotUsed ? 1 : 0;
  counts.unknown += socket.state == SocketState::kUnknown ? 1 : 0;
}

}  // namespace

Sockets::Sockets(const Inventory& inventory) : fInventory(inventory), fTree(inventory) {
  FindFacts();
  const PeerPairs pairs(fTree, fPortFacts);
  for (const std::size_t top : fTree.Top()) {
    if (!pairs.IsSecondHalf(top)) AddFrom(top, pairs);
  }
}

SocketCounts Sockets::Counts() const {
  SocketCounts counts;
  for (const SocketNode& node : fNodes) {
    switch (node.Class()) {
      case ClassId::kController:
        ++counts.controllers;
        break;
      case ClassId::kHub:
        ++counts.hubs;
        break;
      case ClassId::kPort:
        CountSocket(node, counts);
        break;
      default:
        ++counts.devices;
        break;
    }
  }
  counts.knowsPeers = fKnowsPeers;
  return counts;
}

const SocketNode& Sockets::Shown(const SocketNode& node) const {
  if (node.children.size() != 1) return node;
  const SocketNode& child = fNodes[node.children.front()];
  if (node.Class() == ClassId::kController) return node.name.empty() ? node : child;
  if (node.Class() != ClassId::kPort) return node;
  const bool areNamesTwo = !node.name.empty() && !child.name.empty() && node.name != child.name;
  return areNamesTwo ? node : child;
}

std::vector<SocketRow> Sockets::Rows(bool folds) const {
  std::vector<SocketRow> rows;
  std::vector<SocketRow> waiting;
  const auto push = [&](const std::vector<std::size_t>& siblings, std::size_t depth) {
    const std::size_t before = waiting.size();
    for (std::size_t first = 0; first < siblings.size();) {
      const std::size_t end = folds ? EndOfFold(siblings, first) : first + 1;
      waiting.push_back({siblings[first], siblings[end - 1], depth});
      first = end;
    }
    std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(before), waiting.end());
  };
  push(fTop, 0);
  while (!waiting.empty()) {
    const SocketRow row = waiting.back();
    waiting.pop_back();
    rows.push_back(row);
    push(Shown(fNodes[row.node]).children, std::min(row.depth + 1, UsbTree::kMaxDepth));
  }
  return rows;
}

void Sockets::FindFacts() {
  fDeviceFacts.resize(fTree.Nodes().size());
  fPortFacts.resize(fTree.Nodes().size());
  const FactsByItem facts(fInventory);
  for (std::size_t index = 0; index < fTree.Nodes().size(); ++index) {
    const Item& item = *fTree.Nodes()[index].item;
    fDeviceFacts[index] = facts.OfDevice(item);
    const PortFacts* const port = facts.OfPort(item);
    fPortFacts[index] = port;
    fKnowsPeers = fKnowsPeers || (port != nullptr && port->KnowsSocket());
  }
}

void Sockets::AddFrom(std::size_t top, const PeerPairs& pairs) {
  struct Waiting {
    std::size_t node;
    std::size_t parent;
  };
  std::vector<Waiting> waiting = {{top, kNoNode}};
  while (!waiting.empty()) {
    const Waiting next = waiting.back();
    waiting.pop_back();
    const std::size_t added = Add(next.node, next.parent, pairs);
    const std::vector<SocketHalf>& halves = fNodes[added].halves;
    for (auto half = halves.rbegin(); half != halves.rend(); ++half) {
      const std::vector<std::size_t>& children = half->node->children;
      for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (!pairs.IsSecondHalf(*child)) waiting.push_back({*child, added});
      }
    }
  }
}

std::size_t Sockets::Add(std::size_t node, std::size_t parent, const PeerPairs& pairs) {
  SocketNode added{{HalfOf(node)}};
  const std::size_t second = pairs.SecondHalfOf(node);
  if (second != kNoNode) added.halves.push_back(HalfOf(second));
  added.name = NameOf(added);
  added.parent = parent;
  if (added.Class() == ClassId::kPort) {
    added.state = StateOf(added.halves, fInventory);
    added.isHardwired = std::any_of(added.halves.begin(), added.halves.end(),
                                    [](const SocketHalf& half) { return HasConnect(half, "hardwired"); });
  }
  (parent == kNoNode ? fTop : fNodes[parent].children).push_back(fNodes.size());
  fNodes.push_back(std::move(added));
  return fNodes.size() - 1;
}

SocketHalf Sockets::HalfOf(std::size_t node) const {
  const UsbTreeNode& half = fTree.Nodes()[node];
  const bool isOnHub = half.Class() == ClassId::kPort && half.parent != kNoNode;
  return {&half, fDeviceFacts[node], fPortFacts[node], isOnHub ? fDeviceFacts[half.parent] : nullptr};
}

std::string Sockets::NameOf(const SocketNode& node) const {
  if (node.Class() == ClassId::kController) {
    std::string names;
    for (const SocketHalf& half : node.halves) {
      for (const std::size_t rootHub : half.node->children) {
        const DeviceFacts* const facts = fDeviceFacts[rootHub];
        if (facts != nullptr && facts->name) names += (names.empty() ? "" : ", ") + *facts->name;
      }
    }
    return names;
  }
  const SocketHalf& first = node.halves.front();
  if (first.port != nullptr) return first.port->name.value_or("");
  return first.device == nullptr ? std::string() : first.device->name.value_or("");
}

std::size_t Sockets::EndOfFold(const std::vector<std::size_t>& siblings, std::size_t first) const {
  const SocketNode& node = fNodes[siblings[first]];
  if (!IsFoldable(node)) return first + 1;
  std::size_t end = first + 1;
  while (end < siblings.size() && AreAlike(node, fNodes[siblings[end]])) ++end;
  return end - first < kFewestFolded ? first + 1 : end;
}

}  // namespace cli
