// What people plug into: the controllers, hubs, sockets and devices of an inventory. The kernel shows a USB 3
// socket as two ports, one on the bus for USB 2 and one on the bus for USB 3, which it calls peers; a USB 3
// hub and a controller with such ports are in the inventory twice, too. Here each is one node with two
// halves. Where no peers are known, every node has one half, and a socket is what the inventory calls a port.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/SocketCounts.h"
#include "cli/model/UsbTree.h"

namespace cli {

class PeerPairs;

/// A node of the inventory's tree and what the kernel knows of it.
struct SocketHalf {
  const UsbTreeNode* node;
  /// Of a hub or device; null where nothing is known.
  const DeviceFacts* device = nullptr;
  /// Of a port; null where nothing is known.
  const PortFacts* port = nullptr;
  /// Of the hub that a port is on; null where nothing is known.
  const DeviceFacts* hub = nullptr;

  const Item& GetItem() const { return *node->item; }
};

enum class SocketState {
  kUnknown,
  /// Both halves are free.
  kFree,
  /// One of the halves or both are used.
  kUsed,
  /// By the kernel's word, no socket is wired to the port; nothing is plugged in.
  kNotUsed
};

struct SocketNode {
  static constexpr std::size_t kNone = UsbTreeNode::kNone;

  /// One, or two by ascending bus.
  std::vector<SocketHalf> halves;
  /// The kernel's name, such as "1-3.1" or "usb1", that of the first half; of a controller, those of its root
  /// hubs, "usb1, usb2". Empty where it is not known.
  std::string name = {};
  /// Of a socket.
  SocketState state = SocketState::kUnknown;
  /// What is in the socket is built in.
  bool isHardwired = false;
  /// Index of the parent; kNone when there is none.
  std::size_t parent = kNone;
  /// Indices of the children: by half, then in the tree's order.
  std::vector<std::size_t> children = {};

  /// kPort for a socket.
  ClassId Class() const { return halves.front().node->Class(); }
  bool IsRootHub() const { return halves.front().node->isRootHub; }
  const Item& GetItem() const { return halves.front().GetItem(); }
};

/// A line of the picture of all nodes.
struct SocketRow {
  /// Index of the node.
  std::size_t node;
  /// Index of the last node, for a row that stands for several empty sockets; else the same as `node`.
  std::size_t last;
  /// 0 at the top, at most UsbTree::kMaxDepth.
  std::size_t depth;

  bool IsFolded() const { return node != last; }
};

class Sockets {
 public:
  /// `inventory` must outlive this.
  explicit Sockets(const Inventory& inventory);
  // The halves point into the tree.
  Sockets(const Sockets&) = delete;
  Sockets& operator=(const Sockets&) = delete;

  const Inventory& GetInventory() const { return fInventory; }
  /// Parents before their children.
  const std::vector<SocketNode>& Nodes() const { return fNodes; }
  /// Indices of the nodes at the top: controllers first, then what is not linked to one.
  const std::vector<std::size_t>& Top() const { return fTop; }

  /// Whether the kernel says which ports are peers, so that a node of the class kPort is a whole socket.
  bool KnowsPeers() const { return fKnowsPeers; }
  /// How many nodes there are.
  SocketCounts Counts() const;

  /// The node that is described in the row of `node`: for a socket, the only node that is plugged in if its
  /// name is the socket's own; for a controller with a name, its root hub.
  const SocketNode& Shown(const SocketNode& node) const;
  /// A row per node, parents before their children; a node that is shown in its parent's row has no row
  /// itself. With `folds`, three or more alike empty sockets in a row that have names share one.
  std::vector<SocketRow> Rows(bool folds) const;

 private:
  void FindFacts();
  void AddFrom(std::size_t top, const PeerPairs& pairs);
  std::size_t Add(std::size_t node, std::size_t parent, const PeerPairs& pairs);
  SocketHalf HalfOf(std::size_t node) const;
  std::string NameOf(const SocketNode& node) const;
  std::size_t EndOfFold(const std::vector<std::size_t>& siblings, std::size_t first) const;

  const Inventory& fInventory;
  UsbTree fTree;
  bool fKnowsPeers = false;
  // What is known of each node of the tree, null for nothing.
  std::vector<const DeviceFacts*> fDeviceFacts;
  std::vector<const PortFacts*> fPortFacts;

  std::vector<SocketNode> fNodes;
  std::vector<std::size_t> fTop;
};

}  // namespace cli
