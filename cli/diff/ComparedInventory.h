// One of two inventories that are compared: its items, where each is, and which one is the same in the other
// inventory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cli/diff/InventoryDiff.h"
#include "cli/model/Inventory.h"
#include "cli/model/Place.h"
#include "cli/model/UsbTree.h"

namespace cli {

/// Where an item is, so that it compares with the other inventory: the ports that lead down to it from a
/// controller or hub that is in both.
struct Position {
  static constexpr std::size_t kNone = UsbTreeNode::kNone;

  /// The number of that controller or hub; kNone where the place begins with something else.
  std::size_t anchor = kNone;
  Place place = {};
  /// Which of the buses of the controller it is on, from 0 on; 0 for a device in a socket whose halves are
  /// known.
  std::size_t bus = 0;

  bool operator==(const Position& other) const {
    return anchor == other.anchor && place == other.place && bus == other.bus;
  }
  bool operator<(const Position& other) const;
};

/// A host controller: its items, and those of its root hubs.
struct ControllerGroup {
  /// Those of the root hub; empty where they are not known.
  std::string serial;
  std::string product;
  /// The lowest number of its buses; 0 where it is not known.
  std::uint32_t bus;
  /// Nodes of the class kController by ascending bus.
  std::vector<std::size_t> nodes;
};

class ComparedInventory {
 public:
  static constexpr std::size_t kNone = UsbTreeNode::kNone;

  /// `inventory` must outlive this. `usesKernel` and `usesPeers` where both inventories have something from
  /// the kernel, and know which ports share a socket.
  ComparedInventory(const Inventory& inventory, bool usesKernel, bool usesPeers);

  std::size_t Count() const { return fTree.Nodes().size(); }
  const UsbTreeNode& Node(std::size_t node) const { return fTree.Nodes()[node]; }
  const Item& ItemOf(std::size_t node) const { return *Node(node).item; }
  std::string SerialOf(std::size_t node) const;
  /// All nodes in the order of their places.
  const std::vector<std::size_t>& InOrder() const { return fInOrder; }
  /// In the order of their buses.
  const std::vector<ControllerGroup>& Controllers() const { return fControllers; }
  /// The root hub of a controller; kNone for none.
  std::size_t RootHubOf(std::size_t controller) const;

  const Position& PositionOf(std::size_t node) const { return fPositions[node]; }
  /// Counts positions anew from the nodes that have a number in `anchors`; kNone means no number.
  void CountFrom(const std::vector<std::size_t>& anchors);

  /// The half of a hub that is on the bus with the lower number; the node itself where it is that or has no
  /// halves.
  std::size_t FirstHalfOf(std::size_t node) const { return fFirstHalves[node]; }
  /// The port that shares the socket; kNone where that is not known.
  std::size_t PeerOf(std::size_t port) const;

  /// The same item in the other inventory; kNone until it is found.
  std::size_t PartnerOf(std::size_t node) const { return fPartners[node]; }
  bool IsFound(std::size_t node) const { return fPartners[node] != kNone; }
  void SetPartner(std::size_t node, std::size_t partner) { fPartners[node] = partner; }

  /// A port that was added or removed together with its hub.
  bool GoesWithHub(std::size_t node) const;
  PlacedItem PlacedItemOf(std::size_t node) const;

 private:
  void FindFacts(const Inventory& inventory);
  void FindHalves();
  void GroupControllers();
  /// The groups by the serial number and the product of their root hubs.
  using Groups = std::map<std::pair<std::string, std::string>, std::size_t>;
  void AddController(std::size_t node, Groups& groups);
  Position PositionBelow(std::size_t node, const std::vector<std::size_t>& anchors) const;
  Position PositionAtTop(std::size_t node) const;
  std::uint32_t PortNumberOf(std::size_t port) const;
  bool IsHalf(std::size_t port) const;
  std::string NameOf(std::size_t node) const;

  UsbTree fTree;
  bool fUsesKernel;
  bool fUsesPeers;
  std::vector<const DeviceFacts*> fDevices;
  std::vector<const PortFacts*> fPorts;
  std::unordered_map<std::string_view, std::size_t> fPortsByName;
  std::vector<std::size_t> fFirstHalves;
  std::vector<bool> fHasSecondHalf;
  std::vector<ControllerGroup> fControllers;
  std::vector<Position> fPositions;
  std::vector<std::size_t> fPartners;
  std::vector<std::size_t> fInOrder;
};

}  // namespace cli
