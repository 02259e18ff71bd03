#include "cli/format/html/HtmlLines.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "cli/model/Identifier.h"

namespace cli {

namespace {

bool IsEmpty(SocketState state) {
  return state == SocketState::kFree || state == SocketState::kNotUsed;
}

}  // namespace

HtmlLines::HtmlLines(const Sockets& sockets) : fSockets(sockets), fShownBy(sockets.Nodes().size()) {
  bool isRootHubShared = false;
  for (SocketRow row : sockets.Rows(false)) {
    const SocketNode& node = sockets.Nodes()[row.node];
    const bool isShared = node.parent != SocketNode::kNone && &Shown(sockets.Nodes()[node.parent]) == &node;
    // The picture itself gives a root hub without a name a row of its own.
    if (row.depth == 0) isRootHubShared = false;
    if (isShared) isRootHubShared = true;
    if (isShared) continue;
    if (isRootHubShared) --row.depth;
    fRows.push_back(row);
    fShownBy[row.node] = row.node;
    fShownBy[IndexOf(Shown(node))] = row.node;
  }
}

std::size_t HtmlLines::EndOf(std::size_t row) const {
  std::size_t end = row + 1;
  while (end < fRows.size() && fRows[end].depth > fRows[row].depth) ++end;
  return end;
}

const SocketNode& HtmlLines::Shown(const SocketNode& node) const {
  const bool isController = node.Class() == ClassId::kController;
  if (isController && node.children.size() == 1) return fSockets.Nodes()[node.children.front()];
  return fSockets.Shown(node);
}

bool HtmlLines::IsMark(std::size_t row) const {
  const SocketNode& node = NodeAt(row);
  return fRows[row].depth > 0 && node.Class() == ClassId::kPort && node.children.empty() &&
         node.state != SocketState::kUsed;
}

bool HtmlLines::IsEmptyController(std::size_t row) const {
  const Inventory& inventory = fSockets.GetInventory();
  const std::size_t end = EndOf(row);
  const bool isKnown = inventory.KnowsConnections() && !inventory.IsPartial();
  if (!isKnown || NodeAt(row).Class() != ClassId::kController || end == row + 1) return false;
  for (std::size_t below = row + 1; below < end; ++below) {
    if (!IsMark(below) || !IsEmpty(NodeAt(below).state)) return false;
  }
  return true;
}

std::string HtmlLines::AnchorOf(const SocketNode& node) const {
  return fmt::format("i{}", fShownBy[IndexOf(node)]);
}

std::size_t HtmlLines::IndexOf(const SocketNode& node) const {
  return static_cast<std::size_t>(&node - fSockets.Nodes().data());
}

std::string BusesOf(const SocketNode& node) {
  std::string buses;
  for (const SocketHalf& half : node.halves) {
    std::string_view bus = BusOf(half.GetItem().String(PropertyId::kDeviceID));
    bus.remove_prefix(std::min(bus.find_first_not_of('0'), bus.size()));
    if (!bus.empty()) buses.append(buses.empty() ? "" : " ").append(bus);
  }
  return buses;
}

}  // namespace cli
