// How the items of an inventory hang together, for the formats that draw it: controllers hold their root hub,
// hubs their ports, ports what is plugged in. Made from the association instances; whatever they do not link
// to a controller stands at the top, so nothing is lost.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/Inventory.h"

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

class UsbTree {
 public:
  /// `inventory` must outlive the tree.
  explicit UsbTree(const Inventory& inventory);

  const std::vector<UsbTreeNode>& Nodes() const { return fNodes; }
  /// Indices of the nodes at the top: controllers first, then what is not linked to one.
  const std::vector<std::size_t>& Top() const { return fTop; }

 private:
  std::vector<UsbTreeNode> fNodes;
  std::vector<std::size_t> fTop;
};

}  // namespace cli
