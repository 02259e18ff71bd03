// Finds the things of one inventory in the other; see the header. Hubs come first, for what hangs on a hub
// that moved has moved with it: a thing's position counts from the nearest hub that was known by its serial
// number.
#include "cli/diff/InventoryDiff.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

#include "cli/model/Wording.h"

namespace cli {

namespace {

using nlohmann::json;

constexpr std::size_t kNone = SavedNode::kNone;

/// A place, or the way down from a hub that is known in both inventories.
struct Position {
  /// Number of that hub's pair; kNone when the way begins at the place's own top.
  std::size_t hub = kNone;
  Place place;

  bool operator==(const Position& other) const { return hub == other.hub && place == other.place; }
};

/// What things must have in common to be taken for the same; fields that do not count are left empty.
struct Likeness {
  ItemKind kind;
  Position position;
  std::string id;
  std::string serial;

  bool operator<(const Likeness& other) const {
    return std::tie(kind, position.hub, position.place, id, serial) <
           std::tie(other.kind, other.position.hub, other.position.place, other.id, other.serial);
  }
};

/// One of the inventories while its things are looked for in the other.
class Side {
 public:
  explicit Side(const SavedInventory& inventory)
      : fTree(inventory), fPositions(fTree.Nodes().size()), fPartners(fTree.Nodes().size(), kNone) {
    for (std::size_t node = 0; node < fPositions.size(); ++node) {
      fPositions[node].place = fTree.Nodes()[node].place;
      fInOrder.push_back(node);
    }
    std::stable_sort(fInOrder.begin(), fInOrder.end(), [this](std::size_t left, std::size_t right) {
      return fTree.Nodes()[left].place < fTree.Nodes()[right].place;
    });
  }

  const SavedNode& Node(std::size_t node) const { return fTree.Nodes()[node]; }
  const SavedItem& Item(std::size_t node) const { return *Node(node).item; }
  /// All nodes in the order of their places.
  const std::vector<std::size_t>& InOrder() const { return fInOrder; }
  const Position& PositionOf(std::size_t node) const { return fPositions[node]; }
  /// The same thing on the other side; kNone as long as it was not found.
  std::size_t PartnerOf(std::size_t node) const { return fPartners[node]; }
  bool IsFound(std::size_t node) const { return fPartners[node] != kNone; }
  void SetPartner(std::size_t node, std::size_t partner) { fPartners[node] = partner; }

  /// A port that is there, or not, because its hub is.
  bool GoesWithItsHub(std::size_t node) const {
    const std::size_t parent = Node(node).parent;
    return Item(node).kind == ItemKind::kPort && parent != kNone && Item(parent).kind == ItemKind::kHub &&
           !IsFound(parent);
  }

  Thing ThingOf(std::size_t node) const {
    const auto& children = Node(node).children;
    const auto ports = std::count_if(children.begin(), children.end(), [this](std::size_t child) {
      return Item(child).kind == ItemKind::kPort;
    });
    const bool isHub = Item(node).kind == ItemKind::kHub;
    return {&Item(node), Node(node).place, isHub ? static_cast<std::size_t>(ports) : 0};
  }

  /// Counts positions from the hubs that have a number now; kNone is no number.
  void CountFrom(const std::vector<std::size_t>& numbers) {
    for (const std::size_t index : fTree.TopDown()) {
      const SavedNode& node = Node(index);
      if (!node.isBelowParent) continue;
      const std::size_t hub = numbers[node.parent];
      Position position = hub == kNone ? fPositions[node.parent] : Position{hub, {}};
      if (node.item->kind == ItemKind::kPort) position.place.ports.push_back(node.place.ports.back());
      fPositions[index] = std::move(position);
    }
  }

 private:
  SavedTree fTree;
  std::vector<Position> fPositions;
  std::vector<std::size_t> fPartners;
  std::vector<std::size_t> fInOrder;
};

/// Which things a pass looks at, on the old side and on the new one.
enum class Serial { kBoth, kNeither, kOldOnly, kNewOnly };

/// One way to know things again.
struct Pass {
  Serial serial;
  bool byPosition;
  bool byId;
};

/// From the surest way to the weakest. A serial number may be readable in only one of the inventories; then
/// the same model at the same place is the same thing.
constexpr std::array<Pass, 6> kPasses = {{{Serial::kBoth, true, true},
                                          {Serial::kBoth, false, true},
                                          {Serial::kNeither, true, true},
                                          {Serial::kNeither, true, false},
                                          {Serial::kOldOnly, true, true},
                                          {Serial::kNewOnly, true, true}}};
constexpr std::size_t kSerialPasses = 2;

class Matcher {
 public:
  Matcher(const SavedInventory& before, const SavedInventory& after) : fOld(before), fNew(after) {
    for (std::size_t pass = 0; pass < kSerialPasses; ++pass) Run(kPasses[pass], ItemKind::kHub);
    CountFromHubs();
    for (const ItemKind kind : {ItemKind::kController, ItemKind::kHub, ItemKind::kPort, ItemKind::kDevice}) {
      for (const Pass& pass : kPasses) Run(pass, kind);
    }
  }

  const Side& Old() const { return fOld; }
  const Side& New() const { return fNew; }

 private:
  using Groups = std::map<Likeness, std::vector<std::size_t>>;

  static bool Concerns(const Side& side, std::size_t node, ItemKind kind, bool hasSerial) {
    const SavedItem& item = side.Item(node);
    return item.kind == kind && !side.IsFound(node) && !side.GoesWithItsHub(node) &&
           SerialOf(item).empty() != hasSerial;
  }

  static Likeness LikenessOf(const Side& side, std::size_t node, const Pass& pass) {
    const SavedItem& item = side.Item(node);
    return {item.kind, pass.byPosition ? side.PositionOf(node) : Position(),
            pass.byId ? IdOf(item) : std::string(),
            pass.serial == Serial::kBoth ? SerialOf(item) : std::string()};
  }

  static Groups GroupsOf(const Side& side, const Pass& pass, ItemKind kind, bool hasSerial) {
    Groups groups;
    for (const std::size_t node : side.InOrder()) {
      if (Concerns(side, node, kind, hasSerial)) groups[LikenessOf(side, node, pass)].push_back(node);
    }
    return groups;
  }

  /// Pairs what is alike, in the order of the places where several are.
  void Run(const Pass& pass, ItemKind kind) {
    const bool oldHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kOldOnly;
    const bool newHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kNewOnly;
    const Groups olds = GroupsOf(fOld, pass, kind, oldHasSerial);
    const Groups news = GroupsOf(fNew, pass, kind, newHasSerial);
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

/// What only tells the place, the kernel's number for the device, or the system, which are told otherwise.
bool IsToldOtherwise(const std::string& property) {
  static const std::array<const char*, 6> kNames = {"DeviceID",   "Name",       "HubName",
                                                    "PortNumber", "SystemName", "SystemCreationClassName"};
  return std::find(kNames.begin(), kNames.end(), property) != kNames.end();
}

/// The value as it counts: a text that tells nothing is none.
json Meaning(const json& value) {
  if (!value.is_string()) return value;
  const std::string text = Given(value.get_ref<const std::string&>());
  return text.empty() ? json() : json(text);
}

json ValueOf(const SavedItem& item, const std::string& name) {
  const auto found = item.properties.find(name);
  return found == item.properties.end() ? json() : *found;
}

std::vector<PropertyChange> ChangesOf(const SavedItem& before, const SavedItem& after) {
  json both = before.properties;
  both.update(after.properties);
  std::vector<PropertyChange> changes;
  for (const auto& entry : both.items()) {
    if (IsToldOtherwise(entry.key())) continue;
    PropertyChange change = {entry.key(), ValueOf(before, entry.key()), ValueOf(after, entry.key())};
    if (Meaning(change.before) != Meaning(change.after)) changes.push_back(std::move(change));
  }
  return changes;
}

/// Puts into words what the matcher found.
class Teller {
 public:
  explicit Teller(const Matcher& matcher) : fOld(matcher.Old()), fNew(matcher.New()) {}

  void Tell(InventoryDifference& difference) const {
    for (const std::size_t node : fOld.InOrder()) {
      if (IsGone(fOld, node)) difference.removed.push_back(fOld.ThingOf(node));
    }
    for (const std::size_t node : fNew.InOrder()) {
      if (IsGone(fNew, node)) difference.added.push_back(fNew.ThingOf(node));
      if (fNew.IsFound(node)) TellPair(difference, fNew.PartnerOf(node), node);
    }
  }

 private:
  static bool IsGone(const Side& side, std::size_t node) {
    return !side.IsFound(node) && !side.GoesWithItsHub(node);
  }

  bool HasMoved(std::size_t old, std::size_t now) const {
    return !(fOld.PositionOf(old) == fNew.PositionOf(now));
  }

  bool IsOldElsewhere(std::size_t old) const {
    return !fOld.IsFound(old) || HasMoved(old, fOld.PartnerOf(old));
  }
  bool IsNewFromElsewhere(std::size_t now) const {
    return !fNew.IsFound(now) || HasMoved(fNew.PartnerOf(now), now);
  }

  /// Whether something else than before is plugged into a port, which is told of that thing.
  bool HasOtherOccupant(std::size_t old, std::size_t now) const {
    const auto& before = fOld.Node(old).children;
    const auto& after = fNew.Node(now).children;
    return std::any_of(before.begin(), before.end(), [this](std::size_t it) { return IsOldElsewhere(it); }) ||
           std::any_of(after.begin(), after.end(), [this](std::size_t it) { return IsNewFromElsewhere(it); });
  }

  bool FollowsFromSomethingTold(const std::string& property, std::size_t old, std::size_t now) const {
    if (property == "HubDepth") return fOld.Node(old).place != fNew.Node(now).place;
    return property == "StatusDescriptions" && HasOtherOccupant(old, now);
  }

  void TellPair(InventoryDifference& difference, std::size_t old, std::size_t now) const {
    ThingChange change = {fOld.ThingOf(old), fNew.ThingOf(now), {}};
    for (PropertyChange& property : ChangesOf(fOld.Item(old), fNew.Item(now))) {
      if (!FollowsFromSomethingTold(property.name, old, now))
        change.properties.push_back(std::move(property));
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

InventoryDifference Compare(const SavedInventory& before, const SavedInventory& after) {
  InventoryDifference difference;
  difference.oldSystem = before.systemName;
  difference.newSystem = after.systemName;
  const Matcher matcher(before, after);
  Teller(matcher).Tell(difference);
  return difference;
}

std::string IdOf(const SavedItem& item) {
  if (item.kind == ItemKind::kController || item.kind == ItemKind::kPort) return std::string();
  return fmt::format("{:04x}:{:04x}", item.Number("VendorID"), item.Number("USBDeviceID"));
}

std::string ProductOf(const SavedItem& item) {
  return Given(item.Text("Description"));
}

std::string SerialOf(const SavedItem& item) {
  return Given(item.Text("SerialNumber"));
}

}  // namespace cli
