#include "cli/diff/InventoryDiff.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "cli/model/DeviceText.h"
#include "cli/model/FactsByItem.h"
#include "cli/model/UsbTree.h"

namespace cli {

namespace {

constexpr std::size_t kNone = UsbTreeNode::kNone;

/// A place, or the path down from a hub that was matched in both inventories.
struct Position {
  /// Number of that hub's pair; kNone when the path begins at the top of the place.
  std::size_t hub = kNone;
  Place place;

  bool operator==(const Position& other) const { return hub == other.hub && place == other.place; }
};

/// What items must have in common to be matched; fields that do not count are empty.
struct Likeness {
  ClassId classId;
  Position position;
  std::string id;
  std::string serial;

  bool operator<(const Likeness& other) const {
    return std::tie(classId, position.hub, position.place, id, serial) <
           std::tie(other.classId, other.position.hub, other.position.place, other.id, other.serial);
  }
};

/// One of the inventories, with the partners of its items in the other.
class Side {
 public:
  Side(const Inventory& inventory, bool usesKernel)
      : fTree(inventory),
        fFacts(fTree.Nodes().size()),
        fPositions(fTree.Nodes().size()),
        fPartners(fTree.Nodes().size(), kNone) {
    const FactsByItem facts(inventory);
    for (std::size_t node = 0; node < fPositions.size(); ++node) {
      if (usesKernel) fFacts[node] = facts.OfDevice(ItemOf(node));
      fPositions[node].place = fTree.Nodes()[node].place;
      fInOrder.push_back(node);
    }
    std::stable_sort(fInOrder.begin(), fInOrder.end(), [this](std::size_t left, std::size_t right) {
      return fTree.Nodes()[left].place < fTree.Nodes()[right].place;
    });
  }

  const UsbTreeNode& Node(std::size_t node) const { return fTree.Nodes()[node]; }
  const Item& ItemOf(std::size_t node) const { return *Node(node).item; }
  std::string SerialOf(std::size_t node) const { return cli::SerialOf(ItemOf(node), fFacts[node]); }
  /// All nodes in the order of their places.
  const std::vector<std::size_t>& InOrder() const { return fInOrder; }
  const Position& PositionOf(std::size_t node) const { return fPositions[node]; }
  /// The same item on the other side; kNone until it is found.
  std::size_t PartnerOf(std::size_t node) const { return fPartners[node]; }
  bool IsFound(std::size_t node) const { return fPartners[node] != kNone; }
  void SetPartner(std::size_t node, std::size_t partner) { fPartners[node] = partner; }

  /// A port that was added or removed together with its hub.
  bool GoesWithHub(std::size_t node) const {
    const std::size_t parent = Node(node).parent;
    return ItemOf(node).Class() == ClassId::kPort && parent != kNone &&
           ItemOf(parent).Class() == ClassId::kHub && !IsFound(parent);
  }

  PlacedItem PlacedItemOf(std::size_t node) const {
    const auto& children = Node(node).children;
    const auto ports = std::count_if(children.begin(), children.end(), [this](std::size_t child) {
      return ItemOf(child).Class() == ClassId::kPort;
    });
    const bool isHub = ItemOf(node).Class() == ClassId::kHub;
    return {&ItemOf(node), fFacts[node], Node(node).place, isHub ? static_cast<std::size_t>(ports) : 0};
  }

  /// Counts positions from the hubs that have a number now; kNone means no number.
  void CountFrom(const std::vector<std::size_t>& numbers) {
    for (const std::size_t index : fTree.TopDown()) {
      const UsbTreeNode& node = Node(index);
      if (!node.isPlacedBelowParent) continue;
      const std::size_t hub = numbers[node.parent];
      Position position = hub == kNone ? fPositions[node.parent] : Position{hub, {}};
      if (node.Class() == ClassId::kPort) position.place.ports.push_back(node.place.ports.back());
      fPositions[index] = std::move(position);
    }
  }

 private:
  UsbTree fTree;
  std::vector<const DeviceFacts*> fFacts;
  std::vector<Position> fPositions;
  std::vector<std::size_t> fPartners;
  std::vector<std::size_t> fInOrder;
};

/// Which items a pass compares, on the old side and on the new one.
enum class Serial { kBoth, kNeither, kOldOnly, kNewOnly };

/// One rule for matching items.
struct Pass {
  Serial serial;
  bool byPosition;
  bool byId;
};

/// From the strictest rule to the weakest. A serial number may be readable in only one of the inventories;
/// then the same model at the same place is the same item.
constexpr std::array<Pass, 6> kPasses = {{{Serial::kBoth, true, true},
                                          {Serial::kBoth, false, true},
                                          {Serial::kNeither, true, true},
                                          {Serial::kNeither, true, false},
                                          {Serial::kOldOnly, true, true},
                                          {Serial::kNewOnly, true, true}}};
constexpr std::size_t kSerialPasses = 2;

/// Hubs come first, since what is connected to a hub that moved has moved with it: an item's position counts
/// from the nearest hub that was matched by its serial number.
class Matcher {
 public:
  Matcher(const Inventory& before, const Inventory& after)
      : fOld(before, before.Kernel() && after.Kernel()), fNew(after, before.Kernel() && after.Kernel()) {
    for (std::size_t pass = 0; pass < kSerialPasses; ++pass) Run(kPasses[pass], ClassId::kHub);
    CountFromHubs();
    for (const ClassId classId : {ClassId::kController, ClassId::kHub, ClassId::kPort, ClassId::kDevice}) {
      for (const Pass& pass : kPasses) Run(pass, classId);
    }
  }

  const Side& Old() const { return fOld; }
  const Side& New() const { return fNew; }

 private:
  using Groups = std::map<Likeness, std::vector<std::size_t>>;

  static bool Concerns(const Side& side, std::size_t node, ClassId classId, bool hasSerial) {
    const Item& item = side.ItemOf(node);
    return item.Class() == classId && !side.IsFound(node) && !side.GoesWithHub(node) &&
           side.SerialOf(node).empty() != hasSerial;
  }

  static Likeness LikenessOf(const Side& side, std::size_t node, const Pass& pass) {
    const Item& item = side.ItemOf(node);
    return {item.Class(), pass.byPosition ? side.PositionOf(node) : Position(),
            pass.byId ? FormatId(item) : std::string(),
            pass.serial == Serial::kBoth ? side.SerialOf(node) : std::string()};
  }

  static Groups GroupsOf(const Side& side, const Pass& pass, ClassId classId, bool hasSerial) {
    Groups groups;
    for (const std::size_t node : side.InOrder()) {
      if (Concerns(side, node, classId, hasSerial)) groups[LikenessOf(side, node, pass)].push_back(node);
    }
    return groups;
  }

  /// Pairs equal items; where there are several, in the order of their places.
  void Run(const Pass& pass, ClassId classId) {
    const bool oldHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kOldOnly;
    const bool newHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kNewOnly;
    const Groups olds = GroupsOf(fOld, pass, classId, oldHasSerial);
    const Groups news = GroupsOf(fNew, pass, classId, newHasSerial);
    for (const auto& [likeness, old] : olds) {
      const auto found = news.find(likeness);
      if (found == news.end()) continue;
      const std::size_t count = std::min(old.size(), found->second.size());
      for (std::size_t at = 0; at < count; ++at) {
        fOld.SetPartner(old[at], found->second[at]);
        fNew.SetPartner(found->second[at], old[at]);
      }
    }
  }

  void CountFromHubs() {
    std::vector<std::size_t> oldNumbers(fOld.InOrder().size(), kNone);
    std::vector<std::size_t> newNumbers(fNew.InOrder().size(), kNone);
    for (std::size_t node = 0; node < oldNumbers.size(); ++node) {
      if (!fOld.IsFound(node)) continue;
      oldNumbers[node] = node;
      newNumbers[fOld.PartnerOf(node)] = node;
    }
    fOld.CountFrom(oldNumbers);
    fNew.CountFrom(newNumbers);
  }

  Side fOld;
  Side fNew;
};

/// Properties that depend on the place, on the kernel's number for the device or on the system; those
/// differences are reported by other means.
bool IsReportedSeparately(PropertyId property) {
  constexpr std::array<PropertyId, 6> kProperties = {
      PropertyId::kDeviceID,   PropertyId::kName,       PropertyId::kHubName,
      PropertyId::kPortNumber, PropertyId::kSystemName, PropertyId::kSystemCreationClassName};
  return std::find(kProperties.begin(), kProperties.end(), property) != kProperties.end();
}

/// The value to compare: a string that the device did not send counts as absent.
Value Significant(const Value& value) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text == nullptr) return value;
  std::string sent = SentString(*text);
  return sent.empty() ? Value() : Value(std::move(sent));
}

Value ValueOf(const PlacedItem& placed, PropertyId property) {
  if (placed.facts == nullptr) return placed.item->Get(property);
  switch (property) {
    case PropertyId::kDescription:
      return ProductOf(*placed.item, placed.facts);
    case PropertyId::kManufacturer:
      return ManufacturerOf(*placed.item, placed.facts);
    case PropertyId::kSerialNumber:
      return SerialOf(*placed.item, placed.facts);
    default:
      return placed.item->Get(property);
  }
}

/// What differs between two items of one class.
std::vector<PropertyChange> ChangesOf(const PlacedItem& before, const PlacedItem& after) {
  std::vector<PropertyChange> changes;
  for (const schema::PropertySchema& property : before.item->Schema().properties) {
    if (IsReportedSeparately(property.id)) continue;
    Value old = ValueOf(before, property.id);
    Value now = ValueOf(after, property.id);
    if (Significant(old) != Significant(now))
      changes.push_back({property.id, std::move(old), std::move(now)});
  }
  return changes;
}

/// Builds the difference from what the matcher found.
class DifferenceBuilder {
 public:
  explicit DifferenceBuilder(const Matcher& matcher) : fOld(matcher.Old()), fNew(matcher.New()) {}

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
  static bool IsGone(const Side& side, std::size_t node) {
    return !side.IsFound(node) && !side.GoesWithHub(node);
  }

  bool HasMoved(std::size_t old, std::size_t now) const {
    return !(fOld.PositionOf(old) == fNew.PositionOf(now));
  }

  bool WasRemovedOrMovedAway(std::size_t old) const {
    return !fOld.IsFound(old) || HasMoved(old, fOld.PartnerOf(old));
  }
  bool WasAddedOrMovedHere(std::size_t now) const {
    return !fNew.IsFound(now) || HasMoved(fNew.PartnerOf(now), now);
  }

  /// Whether another item than before is plugged into a port, which is reported with that item.
  bool HasOtherOccupant(std::size_t old, std::size_t now) const {
    const auto& before = fOld.Node(old).children;
    const auto& after = fNew.Node(now).children;
    return std::any_of(before.begin(), before.end(),
                       [this](std::size_t it) { return WasRemovedOrMovedAway(it); }) ||
           std::any_of(after.begin(), after.end(),
                       [this](std::size_t it) { return WasAddedOrMovedHere(it); });
  }

  bool FollowsFromPlace(PropertyId property, std::size_t old, std::size_t now) const {
    if (property == PropertyId::kHubDepth) return fOld.Node(old).place != fNew.Node(now).place;
    return property == PropertyId::kStatusDescriptions && HasOtherOccupant(old, now);
  }

  void AddPair(InventoryDifference& difference, std::size_t old, std::size_t now) const {
    ItemChange change = {fOld.PlacedItemOf(old), fNew.PlacedItemOf(now), {}};
    for (PropertyChange& property : ChangesOf(change.before, change.after)) {
      if (!FollowsFromPlace(property.property, old, now)) change.properties.push_back(std::move(property));
    }
    if (HasMoved(old, now)) {
      difference.moved.push_back(std::move(change));
    } else if (!change.properties.empty()) {
      difference.changed.push_back(std::move(change));
    }
  }

  const Side& fOld;
  const Side& fNew;
};

}  // namespace

InventoryDifference Compare(const Inventory& before, const Inventory& after) {
  InventoryDifference difference;
  difference.oldSystem = before.SystemName();
  difference.newSystem = after.SystemName();
  const Matcher matcher(before, after);
  DifferenceBuilder(matcher).Build(difference);
  return difference;
}

}  // namespace cli
