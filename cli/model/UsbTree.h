// How the items of an inventory are connected: root hubs are below controllers, ports below hubs, and what is
// plugged in below ports. Made from the links; an item that no link leads to is at the top, so nothing is
// lost.
#pragma once

#include <cstddef>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/Place.h"

namespace cli {

struct UsbTreeNode {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// A controller, hub, port or device; owned by the inventory.
  const Item* item;
  Place place = {};
  /// Index of the parent; kNone when there is none.
  std::size_t parent = kNone;
  /// Indices of the children.
  std::vector<std::size_t> children = {};
  /// A hub right below its controller.
  bool isRootHub = false;
  /// Whether the place continues that of the parent.
  bool isPlacedBelowParent = false;

  ClassId Class() const { return item->Class(); }
};

/// A node in the order in which a tree is drawn.
struct UsbTreeRow {
  /// Index of the node.
  std::size_t node;
  /// 0 at the top, at most UsbTree::kMaxDepth.
  std::size_t depth;
};

class UsbTree {
 public:
  /// A list may claim any number of tiers; rows below this one are drawn at its depth.
  static constexpr std::size_t kMaxDepth = 32;

  /// `inventory` must outlive the tree. Links that lead nowhere, to a controller or to a second parent are
  /// ignored; items that are linked in a circle are at the top, each by itself.
  explicit UsbTree(const Inventory& inventory);

  /// Controllers, hubs, ports, devices, each in the inventory's order.
  const std::vector<UsbTreeNode>& Nodes() const { return fNodes; }
  /// Indices of the nodes at the top: controllers first, then what is not linked to one.
  const std::vector<std::size_t>& Top() const { return fTop; }
  /// Indices of all nodes, parents before their children.
  const std::vector<std::size_t>& TopDown() const { return fTopDown; }
  /// The node that is described in the row of `node`: for a port, the only item that is plugged in.
  const UsbTreeNode& Shown(const UsbTreeNode& node) const;
  /// A row per node, parents before their children; an item that is shown in its port's row has no row
  /// itself.
  std::vector<UsbTreeRow> Rows() const;

 private:
  void AddNodes(const std::vector<Item>& items);
  void Link(std::size_t parent, std::size_t child);
  void LinkRootHubs();
  void LinkItems(const Inventory& inventory);
  void Descend(std::size_t top);
  void UnlinkCircles();

  std::vector<UsbTreeNode> fNodes;
  std::vector<std::size_t> fTop;
  std::vector<std::size_t> fTopDown;
};

}  // namespace cli
