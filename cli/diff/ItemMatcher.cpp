#include "cli/diff/ItemMatcher.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

#include "cli/diff/ControllerMatch.h"
#include "cli/model/DeviceText.h"

namespace cli {

namespace {

bool KnowsPeers(const Inventory& inventory) {
  if (!inventory.Kernel()) return false;
  const std::vector<PortFacts>& ports = inventory.Kernel()->ports;
  return std::any_of(ports.begin(), ports.end(), [](const PortFacts& port) { return port.KnowsSocket(); });
}

/// The only items of their model; null for models that have several.
using Models = std::map<std::string, std::size_t>;

Models OnlyOnesOf(const ComparedInventory& side, ClassId classId) {
  Models models;
  for (const std::size_t node : side.InOrder()) {
    if (side.Node(node).Class() != classId || side.Node(node).isRootHub) continue;
    const auto [model, isFirst] = models.emplace(FormatId(side.ItemOf(node)), node);
    if (!isFirst) model->second = ComparedInventory::kNone;
  }
  return models;
}

void SetAnchor(const ControllerGroup& controller, std::size_t anchor, std::vector<std::size_t>& anchors) {
  for (const std::size_t node : controller.nodes) anchors[node] = anchor;
}

}  // namespace

struct ItemMatcher::Likeness {
  ClassId classId;
  Position position;
  std::string id;
  std::string serial;

  bool operator<(const Likeness& other) const {
    return std::tie(classId, position, id, serial) <
           std::tie(other.classId, other.position, other.id, other.serial);
  }
};

/// Hubs come before what is connected to them, since that has moved with a hub that moved.
ItemMatcher::ItemMatcher(const Inventory& before, const Inventory& after)
    : fUsesKernel(before.Kernel() && after.Kernel()),
      fUsesPeers(KnowsPeers(before) && KnowsPeers(after)),
      fOld(before, fUsesKernel, fUsesPeers),
      fNew(after, fUsesKernel, fUsesPeers),
      fOldAnchors(fOld.Count(), ComparedInventory::kNone),
      fNewAnchors(fNew.Count(), ComparedInventory::kNone),
      fIsCertain(fOld.Count(), true) {
  // From the strictest rule to the weakest. A serial number may be readable in only one of the inventories;
  // then the same model at the same place is the same item.
  constexpr std::array<Pass, 3> kStrict = {
      {{Serial::kBoth, true, true}, {Serial::kBoth, false, true}, {Serial::kNeither, true, true}}};
  constexpr std::array<Pass, 3> kWeak = {
      {{Serial::kNeither, true, false}, {Serial::kOldOnly, true, true}, {Serial::kNewOnly, true, true}}};
  MatchControllers();
  MatchHubs();
  for (const ClassId classId : {ClassId::kHub, ClassId::kPort, ClassId::kDevice}) {
    for (const Pass& pass : kStrict) Run(pass, classId);
    if (classId == ClassId::kDevice) MatchUnique(classId);
    for (const Pass& pass : kWeak) Run(pass, classId);
  }
}

/// Positions count from the controllers, whose root hubs need no other rule.
void ItemMatcher::MatchControllers() {
  const std::vector<ControllerGroup>& olds = fOld.Controllers();
  const std::vector<ControllerGroup>& news = fNew.Controllers();
  const std::vector<std::size_t> partners = cli::MatchControllers(olds, news);
  for (const ControllerGroup& old : olds) SetAnchor(old, old.nodes.front(), fOldAnchors);
  for (const ControllerGroup& now : news) SetAnchor(now, fOld.Count() + now.nodes.front(), fNewAnchors);
  for (std::size_t old = 0; old < olds.size(); ++old) {
    if (partners[old] == ComparedInventory::kNone) continue;
    SetAnchor(news[partners[old]], olds[old].nodes.front(), fNewAnchors);
    MatchBuses(olds[old], news[partners[old]]);
  }
  fOld.CountFrom(fOldAnchors);
  fNew.CountFrom(fNewAnchors);
}

void ItemMatcher::MatchBuses(const ControllerGroup& old, const ControllerGroup& now) {
  const std::size_t count = std::min(old.nodes.size(), now.nodes.size());
  for (std::size_t bus = 0; bus < count; ++bus) {
    MatchNodes(old.nodes[bus], now.nodes[bus]);
    const std::size_t oldRootHub = fOld.RootHubOf(old.nodes[bus]);
    const std::size_t newRootHub = fNew.RootHubOf(now.nodes[bus]);
    const bool areKnown = oldRootHub != ComparedInventory::kNone && newRootHub != ComparedInventory::kNone;
    if (areKnown) MatchNodes(oldRootHub, newRootHub);
  }
}

void ItemMatcher::MatchNodes(std::size_t old, std::size_t now) {
  fOld.SetPartner(old, now);
  fNew.SetPartner(now, old);
}

/// A hub that is recognised wherever it is, so that what is on it can be counted from it.
void ItemMatcher::MatchHubs() {
  Run({Serial::kBoth, true, true}, ClassId::kHub);
  Run({Serial::kBoth, false, true}, ClassId::kHub);
  MatchUnique(ClassId::kHub);
  CountFromHubs();
}

/// Pairs what has no serial number and is the only item of its model in either inventory.
void ItemMatcher::MatchUnique(ClassId classId) {
  const Models olds = OnlyOnesOf(fOld, classId);
  const Models news = OnlyOnesOf(fNew, classId);
  for (const auto& [model, old] : olds) {
    const auto found = news.find(model);
    const std::size_t now = found == news.end() ? ComparedInventory::kNone : found->second;
    const bool areSingle = old != ComparedInventory::kNone && now != ComparedInventory::kNone;
    if (!areSingle || model.empty()) continue;
    if (!Concerns(fOld, old, classId, false) || !Concerns(fNew, now, classId, false)) continue;
    MatchNodes(old, now);
    fIsCertain[old] = false;
  }
}

/// Pairs equal items; where there are several, in the order of their places.
void ItemMatcher::Run(const Pass& pass, ClassId classId) {
  const bool oldHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kOldOnly;
  const bool newHasSerial = pass.serial == Serial::kBoth || pass.serial == Serial::kNewOnly;
  const Groups olds = GroupsOf(fOld, pass, classId, oldHasSerial);
  const Groups news = GroupsOf(fNew, pass, classId, newHasSerial);
  for (const auto& [likeness, old] : olds) {
    const auto found = news.find(likeness);
    if (found == news.end()) continue;
    const std::size_t count = std::min(old.size(), found->second.size());
    for (std::size_t at = 0; at < count; ++at) MatchNodes(old[at], found->second[at]);
  }
}

void ItemMatcher::CountFromHubs() {
  const std::size_t first = fOld.Count() + fNew.Count();
  for (const std::size_t old : fOld.InOrder()) {
    if (fOld.Node(old).Class() != ClassId::kHub || fOld.Node(old).isRootHub || !fOld.IsFound(old)) continue;
    fOldAnchors[old] = first + AnchorOfHub(old);
    fNewAnchors[fOld.PartnerOf(old)] = fOldAnchors[old];
  }
  fOld.CountFrom(fOldAnchors);
  fNew.CountFrom(fNewAnchors);
}

/// The same for both halves of a hub that are halves of the same hub in both inventories.
std::size_t ItemMatcher::AnchorOfHub(std::size_t old) const {
  const std::size_t oldFirst = fOld.FirstHalfOf(old);
  const std::size_t newFirst = fNew.FirstHalfOf(fOld.PartnerOf(old));
  const bool isSecond = oldFirst != old && newFirst != fOld.PartnerOf(old);
  return isSecond && fOld.PartnerOf(oldFirst) == newFirst ? oldFirst : old;
}

bool ItemMatcher::Concerns(const ComparedInventory& side, std::size_t node, ClassId classId, bool hasSerial) {
  const UsbTreeNode& candidate = side.Node(node);
  return candidate.Class() == classId && !candidate.isRootHub && !side.IsFound(node) &&
         !side.GoesWithHub(node) && side.SerialOf(node).empty() != hasSerial;
}

ItemMatcher::Likeness ItemMatcher::LikenessOf(const ComparedInventory& side, std::size_t node,
                                              const Pass& pass) {
  const Item& item = side.ItemOf(node);
  return {item.Class(), pass.byPosition ? side.PositionOf(node) : Position(),
          pass.byId ? FormatId(item) : std::string(),
          pass.serial == Serial::kBoth ? side.SerialOf(node) : std::string()};
}

ItemMatcher::Groups ItemMatcher::GroupsOf(const ComparedInventory& side, const Pass& pass, ClassId classId,
                                          bool hasSerial) {
  Groups groups;
  for (const std::size_t node : side.InOrder()) {
    if (Concerns(side, node, classId, hasSerial)) groups[LikenessOf(side, node, pass)].push_back(node);
  }
  return groups;
}

}  // namespace cli
