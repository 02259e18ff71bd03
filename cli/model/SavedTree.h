// Where each thing of a saved inventory hangs: the bus and the chain of port numbers down to it, worked out
// from the associations. Places do not depend on the numbers that the kernel gives devices as they come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/model/SavedInventory.h"

namespace cli {

/// Ascending by bus and port numbers; what is on no known bus comes last.
struct Place {
  bool hasBus = false;
  std::uint32_t bus = 0;
  /// Of what no controller leads to: the identifier of the topmost thing above it, or its own.
  std::string identifier;
  /// Port numbers from there on down, counted from 0 as the device list does.
  std::vector<std::uint32_t> ports;

  bool operator==(const Place& other) const;
  bool operator!=(const Place& other) const { return !(*this == other); }
  bool operator<(const Place& other) const;
};

struct SavedNode {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// Owned by the inventory.
  const SavedItem* item;
  Place place;
  /// Index of the node right above; kNone when there is none.
  std::size_t parent = kNone;
  /// The place goes on from that of the parent.
  bool isBelowParent = false;
  /// Indices of the nodes right below.
  std::vector<std::size_t> children = {};
};

class SavedTree {
 public:
  /// `inventory` must outlive the tree. Links that lead nowhere, round in a circle or to a second parent are
  /// passed over. Below 32 ports in a row, places begin afresh.
  explicit SavedTree(const SavedInventory& inventory);

  /// In the inventory's order.
  const std::vector<SavedNode>& Nodes() const { return fNodes; }
  /// Indices of all nodes, parents ahead of their children.
  const std::vector<std::size_t>& TopDown() const { return fTopDown; }

 private:
  void Link(std::size_t parent, std::size_t child);
  void LinkRootHubs();
  void LinkAssociations(const std::vector<SavedLink>& links);
  void Descend(std::size_t top);
  void TakeApartCircles();
  void GoOnFromParent(SavedNode& node);

  std::vector<SavedNode> fNodes;
  std::vector<std::size_t> fTopDown;
};

}  // namespace cli
