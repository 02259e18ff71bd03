#include "cli/model/PeerPairs.h"

#include <optional>
#include <string_view>
#include <unordered_map>

#include "kernel/DeviceName.h"

namespace cli {

namespace {

constexpr std::size_t kNoPort = UsbTreeNode::kNone;

unsigned BusOfPort(const PortFacts& port) {
  const std::optional<kernel::DeviceName> name = kernel::ParseDeviceName(*port.name);
  return name ? name->bus : 0;
}

}  // namespace

PeerPairs::PeerPairs(const UsbTree& tree, const std::vector<const PortFacts*>& ports)
    : fTree(tree), fSecondHalves(tree.Nodes().size(), kNoPort), fIsSecond(tree.Nodes().size(), false) {
  FindPeers(ports);
  for (const Peers& peers : fPeers) PairRootHubs(peers);
  for (const Peers& peers : fPeers) PairPorts(peers);
}

void PeerPairs::FindPeers(const std::vector<const PortFacts*>& ports) {
  std::unordered_map<std::string_view, std::size_t> byName;
  for (const std::size_t index : fTree.TopDown()) {
    if (ports[index] != nullptr && ports[index]->name) byName.emplace(*ports[index]->name, index);
  }
  const auto peerOf = [&](std::size_t port) {
    if (ports[port] == nullptr || !ports[port]->peer) return kNoPort;
    const auto found = byName.find(*ports[port]->peer);
    return found == byName.end() ? kNoPort : found->second;
  };
  for (const std::size_t port : fTree.TopDown()) {
    const std::size_t peer = peerOf(port);
    if (peer == kNoPort || peerOf(peer) != port) continue;
    if (BusOfPort(*ports[port]) < BusOfPort(*ports[peer])) fPeers.push_back({port, peer});
  }
}

void PeerPairs::PairRootHubs(const Peers& peers) {
  const auto& nodes = fTree.Nodes();
  const std::size_t first = nodes[peers.first].parent;
  const std::size_t second = nodes[peers.second].parent;
  if (first == kNoPort || second == kNoPort) return;
  const std::size_t firstAbove = nodes[first].parent;
  const std::size_t secondAbove = nodes[second].parent;
  const bool areAtTop = firstAbove == kNoPort && secondAbove == kNoPort;
  if (!areAtTop && !(nodes[first].isRootHub && nodes[second].isRootHub)) return;
  Pair(first, second);
  if (!areAtTop && SecondHalfOf(first) == second) Pair(firstAbove, secondAbove);
}

void PeerPairs::PairPorts(const Peers& peers) {
  if (!AreHubsPaired(peers)) return;
  Pair(peers.first, peers.second);
  const auto& nodes = fTree.Nodes();
  const auto& first = nodes[peers.first].children;
  const auto& second = nodes[peers.second].children;
  if (first.size() != 1 || second.size() != 1) return;
  const bool areHubs =
      nodes[first.front()].Class() == ClassId::kHub && nodes[second.front()].Class() == ClassId::kHub;
  if (areHubs) Pair(first.front(), second.front());
}

bool PeerPairs::AreHubsPaired(const Peers& peers) const {
  const std::size_t first = fTree.Nodes()[peers.first].parent;
  const std::size_t second = fTree.Nodes()[peers.second].parent;
  return first == kNoPort || second == kNoPort ? first == second : SecondHalfOf(first) == second;
}

void PeerPairs::Pair(std::size_t first, std::size_t second) {
  const bool isEitherPaired = SecondHalfOf(first) != kNoPort || SecondHalfOf(second) != kNoPort ||
                              IsSecondHalf(first) || IsSecondHalf(second);
  if (first == second || isEitherPaired) return;
  fSecondHalves[first] = second;
  fIsSecond[second] = true;
}

}  // namespace cli
