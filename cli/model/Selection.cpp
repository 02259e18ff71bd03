#include "cli/model/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "cli/model/Identifier.h"
#include "cli/model/Sockets.h"
#include "cli/model/UsbTree.h"
#include "cli/text/Text.h"
#include "kernel/DeviceName.h"

namespace cli {

namespace {

using Items = std::unordered_set<const Item*>;

/// The number that all of `digits` make.
std::optional<unsigned> ParseNumber(std::string_view digits, int base) {
  unsigned number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// False when `text` is not an id; an empty one leaves the value unset.
bool ParseOptionalId(std::string_view text, std::optional<std::uint16_t>& id) {
  constexpr std::size_t kMaxDigits = 4;
  if (text.empty()) return true;
  const std::string_view prefix = text.substr(0, 2);
  if (prefix == "0x" || prefix == "0X") text.remove_prefix(2);
  const std::optional<unsigned> number = ParseNumber(text, 16);
  if (text.size() > kMaxDigits || !number) return false;
  id = static_cast<std::uint16_t>(*number);
  return true;
}

/// False when `text` is not a number; an empty one leaves the value unset.
bool ParseOptionalNumber(std::string_view text, std::optional<unsigned>& number) {
  if (text.empty()) return true;
  number = ParseNumber(text, 10);
  return number.has_value();
}

bool IsNumber(const Item& item, PropertyId property, std::optional<std::uint16_t> wanted) {
  return !wanted || (item.Has(property) && item.Number(property) == *wanted);
}

bool HasIds(const Item& item, const VendorProduct& ids) {
  return IsNumber(item, PropertyId::kVendorID, ids.vendor) &&
         IsNumber(item, PropertyId::kUSBDeviceID, ids.product);
}

bool IsAt(const Item& item, const BusDevice& place) {
  const std::string& identifier = item.String(PropertyId::kDeviceID);
  const auto matches = [](const std::optional<unsigned>& wanted, std::string_view digits) {
    return !wanted || ParseNumber(digits, 10) == wanted;
  };
  return matches(place.bus, BusOf(identifier)) && matches(place.device, DeviceOf(identifier));
}

/// What a selection asks about items that these do not say themselves.
class Facts {
 public:
  Facts(const Inventory& inventory, const Selection& selection) {
    if (selection.name && inventory.Kernel()) AddNamed(*inventory.Kernel(), *selection.name);
    if (selection.occupancy != Occupancy::kAny) AddSockets(inventory, selection.occupancy);
  }

  bool HasName(const Item& item) const { return fNamed.count(item.String(PropertyId::kDeviceID)) != 0; }
  bool HasOccupancy(const Item& item) const { return fOfOccupancy.count(&item) != 0; }

 private:
  void AddNamed(const KernelFacts& facts, const std::string& name) {
    for (const DeviceFacts& device : facts.devices) {
      if (device.name == name) fNamed.insert(device.device);
    }
  }

  void AddSockets(const Inventory& inventory, Occupancy occupancy) {
    const Sockets sockets(inventory);
    for (const SocketNode& node : sockets.Nodes()) {
      if (!Has(node, occupancy)) continue;
      for (const SocketHalf& half : node.halves) fOfOccupancy.insert(&half.GetItem());
    }
  }

  static bool Has(const SocketNode& node, Occupancy occupancy) {
    if (node.Class() == ClassId::kPort) {
      return node.state == (occupancy == Occupancy::kFree ? SocketState::kFree : SocketState::kUsed);
    }
    const bool isPluggedIn = node.Class() != ClassId::kController && !node.IsRootHub();
    return isPluggedIn && occupancy == Occupancy::kOccupied;
  }

  std::unordered_set<std::string> fNamed;
  Items fOfOccupancy;
};

bool IsHubOrDevice(const Item& item) {
  return item.Class() == ClassId::kHub || item.Class() == ClassId::kDevice;
}

bool HasClass(const Item& item, const std::vector<ClassId>& classes) {
  return classes.empty() || std::find(classes.begin(), classes.end(), item.Class()) != classes.end();
}

bool Matches(const Item& item, const Selection& selection, const Facts& facts) {
  if (!HasClass(item, selection.classes)) return false;
  if (selection.occupancy != Occupancy::kAny && !facts.HasOccupancy(item)) return false;
  if (selection.name && !(IsHubOrDevice(item) && facts.HasName(item))) return false;
  if (selection.ids.empty() && !selection.place) return true;
  if (!IsHubOrDevice(item)) return false;
  const std::vector<VendorProduct>& ids = selection.ids;
  const auto hasIds = [&item](const VendorProduct& wanted) { return HasIds(item, wanted); };
  return (ids.empty() || std::any_of(ids.begin(), ids.end(), hasIds)) &&
         (!selection.place || IsAt(item, *selection.place));
}

Items FindMatches(const Inventory& inventory, const Selection& selection) {
  const Facts facts(inventory, selection);
  Items matches;
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    for (const Item& item : ofClass.items) {
      if (Matches(item, selection, facts)) matches.insert(&item);
    }
  }
  return matches;
}

/// Adds all items above these in the tree.
void AddItemsAbove(const Inventory& inventory, Items& items) {
  const UsbTree tree(inventory);
  const auto& nodes = tree.Nodes();
  const Items matches = items;
  for (const UsbTreeNode& node : nodes) {
    if (matches.count(node.item) == 0) continue;
    std::size_t parent = node.parent;
    while (parent != UsbTreeNode::kNone && items.insert(nodes[parent].item).second)
      parent = nodes[parent].parent;
  }
}

void AddLinksAmong(const Inventory& inventory, Items& items) {
  std::unordered_set<std::string> paths;
  for (const Item* const item : items) paths.insert(item->Path());
  for (const auto* const links : {&inventory.PortsOnHubs(), &inventory.Connections()}) {
    for (const Item& link : *links) {
      const bool areBothThere = paths.count(link.String(PropertyId::kAntecedent)) != 0 &&
                                paths.count(link.String(PropertyId::kDependent)) != 0;
      if (areBothThere) items.insert(&link);
    }
  }
}

std::string Decimal(const std::optional<unsigned>& number) {
  return number ? std::to_string(*number) : std::string();
}

std::string Hexadecimal(const std::optional<std::uint16_t>& id) {
  return id ? fmt::format("{:04x}", *id) : std::string();
}

std::string TextOf(const VendorProduct& ids) {
  return Hexadecimal(ids.vendor) + ":" + Hexadecimal(ids.product);
}

std::string TextOf(const BusDevice& place) {
  return Decimal(place.bus) + ":" + Decimal(place.device);
}

Origin SelectedFrom(Origin origin, const Selection& selection) {
  if (!origin.selection) origin.selection.emplace();
  auto& [classes, ids, places] = *origin.selection;
  for (const ClassId classId : selection.classes) AddOnce(schema::ClassOf(classId).name, classes);
  for (const VendorProduct& each : selection.ids) AddOnce(TextOf(each), ids);
  if (selection.place) AddOnce(TextOf(*selection.place), places);
  if (selection.name) AddOnce(*selection.name, places);
  return origin;
}

}  // namespace

std::optional<VendorProduct> ParseVendorProduct(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || text.size() == 1) return std::nullopt;
  const std::string_view both = text;
  VendorProduct ids;
  const bool areIds = ParseOptionalId(both.substr(0, colon), ids.vendor) &&
                      ParseOptionalId(both.substr(colon + 1), ids.product);
  return areIds ? std::optional<VendorProduct>(ids) : std::nullopt;
}

std::optional<BusDevice> ParseBusDevice(const std::string& text) {
  if (text.empty()) return std::nullopt;
  const std::string_view both = text;
  const std::size_t colon = text.find(':');
  const bool hasBus = colon != std::string::npos;
  BusDevice place;
  const bool isPlace = ParseOptionalNumber(hasBus ? both.substr(0, colon) : std::string_view(), place.bus) &&
                       ParseOptionalNumber(hasBus ? both.substr(colon + 1) : both, place.device);
  return isPlace ? std::optional<BusDevice>(place) : std::nullopt;
}

std::optional<std::string> ParseKernelName(const std::string& text) {
  const std::optional<kernel::DeviceName> name = kernel::ParseDeviceName(text);
  return name ? std::optional(name->Text()) : std::nullopt;
}

Inventory Select(const Inventory& inventory, const Selection& selection, bool keepsPath) {
  if (!selection.IsSet()) return inventory;
  Items items = FindMatches(inventory, selection);
  if (keepsPath && selection.classes.empty()) {
    AddItemsAbove(inventory, items);
    AddLinksAmong(inventory, items);
  }
  Inventory part = inventory.Only([&items](const Item& item) { return items.count(&item) != 0; });
  if (!part.CountsBeforeSelection()) part.SetCountsBeforeSelection(Sockets(inventory).Counts());
  if (part.GetOrigin()) part.SetOrigin(SelectedFrom(*part.GetOrigin(), selection));
  return part;
}

std::string Describe(const Selection& selection) {
  std::vector<std::string> options;
  for (const VendorProduct& ids : selection.ids) {
    options.push_back("-d " + TextOf(ids));
  }
  if (selection.place) {
    options.push_back("-s " + TextOf(*selection.place));
  }
  if (selection.name) options.push_back("-s " + *selection.name);
  for (const ClassId classId : selection.classes)
    options.push_back("--class " + schema::ClassOf(classId).name);
  if (selection.occupancy != Occupancy::kAny) {
    options.emplace_back(selection.occupancy == Occupancy::kFree ? "--free" : "--occupied");
  }
  return fmt::format("{}", fmt::join(options, " "));
}

}  // namespace cli
