// Which nodes of a tree are the two halves of one controller, hub or socket, by the ports that the kernel
// calls peers.
#pragma once

#include <cstddef>
#include <vector>

#include "cli/model/KernelFacts.h"
#include "cli/model/UsbTree.h"

namespace cli {

class PeerPairs {
 public:
  /// `ports` holds what is known of each node of `tree`, null for none. Two ports are a pair where each is
  /// the other's peer, they are on different buses, and their hubs are a pair or both are missing; so a
  /// pair's parents are a pair, too. Two hubs are a pair where both are the only thing plugged into the ports
  /// of a pair; two root hubs, and their controllers, where any two of their ports are peers.
  PeerPairs(const UsbTree& tree, const std::vector<const PortFacts*>& ports);

  /// The other half of a node, on the bus with the higher number; UsbTreeNode::kNone for a node that has none
  /// or is itself this half.
  std::size_t SecondHalfOf(std::size_t node) const { return fSecondHalves[node]; }
  bool IsSecondHalf(std::size_t node) const { return fIsSecond[node]; }

 private:
  struct Peers {
    /// That with the lower bus number.
    std::size_t first;
    std::size_t second;
  };

  void FindPeers(const std::vector<const PortFacts*>& ports);
  void PairRootHubs(const Peers& peers);
  void PairPorts(const Peers& peers);
  bool AreHubsPaired(const Peers& peers) const;
  void Pair(std::size_t first, std::size_t second);

  const UsbTree& fTree;
  /// Parents before their children.
  std::vector<Peers> fPeers;
  std::vector<std::size_t> fSecondHalves;
  std::vector<bool> fIsSecond;
};

}  // namespace cli
