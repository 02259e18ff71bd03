// Finds the items that are the same in two inventories.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "cli/diff/ComparedInventory.h"

namespace cli {

class ItemMatcher {
 public:
  /// Both inventories must outlive this.
  ItemMatcher(const Inventory& before, const Inventory& after);

  const ComparedInventory& Old() const { return fOld; }
  const ComparedInventory& New() const { return fNew; }
  /// False for an item that was matched because no other item of its model is in either inventory.
  bool IsCertain(std::size_t old) const { return fIsCertain[old]; }
  /// Whether both inventories have something from the kernel.
  bool UsesKernel() const { return fUsesKernel; }

 private:
  /// Which items a pass compares, on the old side and on the new one.
  enum class Serial { kBoth, kNeither, kOldOnly, kNewOnly };
  /// One rule for matching items.
  struct Pass {
    Serial serial;
    bool byPosition;
    bool byId;
  };
  /// What items must have in common to be matched; fields that do not count are empty.
  struct Likeness;
  using Groups = std::map<Likeness, std::vector<std::size_t>>;

  void MatchControllers();
  void MatchBuses(const ControllerGroup& old, const ControllerGroup& now);
  void MatchNodes(std::size_t old, std::size_t now);
  void MatchHubs();
  void MatchUnique(ClassId classId);
  void Run(const Pass& pass, ClassId classId);
  void CountFromHubs();
  std::size_t AnchorOfHub(std::size_t old) const;

  static bool Concerns(const ComparedInventory& side, std::size_t node, ClassId classId, bool hasSerial);
  static Likeness LikenessOf(const ComparedInventory& side, std::size_t node, const Pass& pass);
  static Groups GroupsOf(const ComparedInventory& side, const Pass& pass, ClassId classId, bool hasSerial);

  bool fUsesKernel;
  bool fUsesPeers;
  ComparedInventory fOld;
  ComparedInventory fNew;
  /// The numbers that positions count from.
  std::vector<std::size_t> fOldAnchors;
  std::vector<std::size_t> fNewAnchors;
  std::vector<bool> fIsCertain;
};

}  // namespace cli
