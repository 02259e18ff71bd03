// How the items of an inventory hang together, for the formats that draw it: controllers hold their root hub,
// hubs their ports, ports what is plugged in. Made from the association instances; whatever they do not link
// to a controller stands at the top, so nothing is lost.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"

namespace cli {

struct UsbTreeNode {
  enum class Kind { kController, kHub, kPort, kDevice };

  Kind kind;
  /// Owned by the inventory.
  const InstanceView* item;
  /// A hub right below its controller.
  bool isRootHub = false;
  /// Indices of the nodes right below.
  std::vector<std::size_t> children;
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
  /// A list may claim any number of tiers; rows below this one stay at its depth.
  static constexpr std::size_t kMaxDepth = 32;

  /// `inventory` must outlive the tree.
  explicit UsbTree(const Inventory& inventory);

  const std::vector<UsbTreeNode>& Nodes() const { return fNodes; }
  /// Indices of the nodes at the top: controllers first, then what is not linked to one.
  const std::vector<std::size_t>& Top() const { return fTop; }
  /// The node whose description stands for `node`: a port shows the one thing that is plugged in.
  const UsbTreeNode& Shown(const UsbTreeNode& node) const;
  /// A row per node, parents ahead of their children; what a port shows has none of its own.
  std::vector<UsbTreeRow> Rows() const;

 private:
  std::vector<UsbTreeNode> fNodes;
  std::vector<std::size_t> fTop;
};

}  // namespace cli
