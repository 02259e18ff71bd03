#include "cli/diff/InventoryDiff.h"

#include <algorithm>
#include <utility>

#include "cli/diff/ItemMatcher.h"
#include "cli/diff/PropertyComparison.h"

namespace cli {

namespace {

bool IsFromSysfs(const Inventory& inventory) {
  return inventory.GetOrigin() && inventory.GetOrigin()->source == "sysfs";
}

/// Builds the difference from what the matcher found.
class DifferenceBuilder {
 public:
  DifferenceBuilder(const ItemMatcher& matcher, const PropertyComparison& properties)
      : fMatcher(matcher), fOld(matcher.Old()), fNew(matcher.New()), fProperties(properties) {}

  void Build(InventoryDifference& difference) const {
    for (const std::size_t node : fOld.InOrder()) {
      if (IsGone(fOld, node)) difference.removed.push_back(fOld.PlacedItemOf(node));
    }
    for (const std::size_t node : fNew.InOrder()) {
      if (IsGone(fNew, node)) difference.added.push_back(fNew.PlacedItemOf(node));
      if (fNew.IsFound(node)) AddPair(difference, fNew.PartnerOf(node), node);
    }
  }

 private:
  static bool IsGone(const ComparedInventory& side, std::size_t node) {
    return !side.IsFound(node) && !side.GoesWithHub(node);
  }

  bool HasMoved(std::size_t old, std::size_t now) const {
    return !(fOld.PositionOf(old) == fNew.PositionOf(now));
  }

  /// Whether something that is plugged into `port` is not plugged into `other`, the same port on the other
  /// side.
  static bool HasOwnOccupant(const ComparedInventory& side, std::size_t port,
                             const ComparedInventory& otherSide, std::size_t other) {
    const auto& children = side.Node(port).children;
    return std::any_of(children.begin(), children.end(), [&](std::size_t child) {
      return !side.IsFound(child) || otherSide.Node(side.PartnerOf(child)).parent != other;
    });
  }

  /// Whether another item than before is plugged into a port, which is reported with that item.
  bool HasOtherOccupant(std::size_t old, std::size_t now) const {
    return HasOwnOccupant(fOld, old, fNew, now) || HasOwnOccupant(fNew, now, fOld, old);
  }

  bool FollowsFromPlace(const PropertyChange& change, std::size_t old, std::size_t now) const {
    if (change.property == PropertyId::kHubDepth) return fOld.Node(old).place != fNew.Node(now).place;
    return change.property == PropertyId::kStatusDescriptions && HasOtherOccupant(old, now);
  }

  /// A peer's name depends on the number of its bus, so ports are compared instead.
  void AddPeers(ItemChange& change, std::size_t old, std::size_t now) const {
    const std::size_t oldPeer = fOld.PeerOf(old);
    const std::size_t newPeer = fNew.PeerOf(now);
    const bool areKnown =
        fMatcher.UsesKernel() && oldPeer != ComparedInventory::kNone && newPeer != ComparedInventory::kNone;
    if (!areKnown || fOld.PartnerOf(oldPeer) == newPeer || fProperties.IsIgnored("peer")) return;
    change.properties.push_back({"peer", {}, *change.before.port->peer, *change.after.port->peer});
  }

  void AddPair(InventoryDifference& difference, std::size_t old, std::size_t now) const {
    ItemChange change = {fOld.PlacedItemOf(old), fNew.PlacedItemOf(now), {}, true};
    for (PropertyChange& property : fProperties.ChangesOf(change.before, change.after)) {
      if (!FollowsFromPlace(property, old, now)) change.properties.push_back(std::move(property));
    }
    AddPeers(change, old, now);
    if (HasMoved(old, now)) {
      change.isCertain = fMatcher.IsCertain(old);
      difference.moved.push_back(std::move(change));
    } else if (!change.properties.empty()) {
      difference.changed.push_back(std::move(change));
    }
  }

  const ItemMatcher& fMatcher;
  const ComparedInventory& fOld;
  const ComparedInventory& fNew;
  const PropertyComparison& fProperties;
};

}  // namespace

InventoryDifference Compare(const Inventory& before, const Inventory& after,
                            const std::vector<std::string>& ignored) {
  InventoryDifference difference;
  difference.before = {before.SystemName(), before.GetOrigin()};
  difference.after = {after.SystemName(), after.GetOrigin()};
  const ItemMatcher matcher(before, after);
  const PropertyComparison properties(matcher.UsesKernel(), IsFromSysfs(before) && IsFromSysfs(after),
                                      ignored);
  DifferenceBuilder(matcher, properties).Build(difference);
  return difference;
}

}  // namespace cli
