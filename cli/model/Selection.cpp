// Parsing and applying a selection; see the header.
#include "cli/model/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "cli/model/UsbTree.h"
#include "cli/model/Wording.h"

namespace cli {

namespace {

using Paths = std::unordered_set<std::string>;

/// The number that the whole of `digits` is.
std::optional<unsigned> ParseNumber(std::string_view digits, int base) {
  unsigned number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [behind, error] = std::from_chars(digits.data(), end, number, base);
  if (error != std::errc() || behind != end) return std::nullopt;
  return number;
}

std::optional<std::uint16_t> ParseId(std::string_view text) {
  constexpr std::size_t kMostDigits = 4;
  const std::string_view prefix = text.substr(0, 2);
  if (prefix == "0x" || prefix == "0X") text.remove_prefix(2);
  if (text.size() > kMostDigits) return std::nullopt;
  const std::optional<unsigned> number = ParseNumber(text, 16);
  if (!number) return std::nullopt;
  return static_cast<std::uint16_t>(*number);
}

/// True unless `text` is no number; one that is left out stays without value.
bool ParseOptionalNumber(std::string_view text, std::optional<unsigned>& number) {
  if (text.empty()) return true;
  number = ParseNumber(text, 10);
  return number.has_value();
}

bool IsNumber(const InstanceView& item, const char* property, std::uint16_t number) {
  return item.Find(property) != nullptr && item.Number(property) == number;
}

bool HasIds(const InstanceView& item, const VendorProduct& ids) {
  return IsNumber(item, "VendorID", ids.vendor) &&
         (!ids.product || IsNumber(item, "USBDeviceID", *ids.product));
}

bool HasPlace(const InstanceView& item, const BusDevice& place) {
  const std::string identifier = item.Text("DeviceID");
  const auto isThat = [](const std::optional<unsigned>& wanted, const std::string& digits) {
    return !wanted || ParseNumber(digits, 10) == wanted;
  };
  return isThat(place.bus, BusOf(identifier)) && isThat(place.device, Behind(identifier, " Device "));
}

bool Matches(const std::string& className, const InstanceView& item, const Selection& selection) {
  const auto& classes = selection.classes;
  if (!classes.empty() && std::find(classes.begin(), classes.end(), className) == classes.end()) return false;
  if (!selection.ids && !selection.place) return true;
  return (className == "KALDO_USBHub" || className == "KALDO_USBDevice") &&
         (!selection.ids || HasIds(item, *selection.ids)) &&
         (!selection.place || HasPlace(item, *selection.place));
}

Paths PathsOfMatches(const Inventory& inventory, const Selection& selection) {
  Paths paths;
  for (const ClassView& view : inventory.Classes()) {
    for (const InstanceView& item : view.instances) {
      if (Matches(view.schema.name, item, selection)) paths.insert(item.PathText());
    }
  }
  return paths;
}

/// For each node the one that it hangs on; its own index where that is none.
std::vector<std::size_t> ParentsIn(const UsbTree& tree) {
  std::vector<std::size_t> parents;
  while (parents.size() < tree.Nodes().size()) parents.push_back(parents.size());
  for (std::size_t index = 0; index < parents.size(); ++index) {
    for (const std::size_t child : tree.Nodes()[index].children) parents[child] = index;
  }
  return parents;
}

void AddItemsOnTheWay(const Inventory& inventory, Paths& paths) {
  const UsbTree tree(inventory);
  const std::vector<std::size_t> parents = ParentsIn(tree);
  const Paths matches = paths;
  for (std::size_t index = 0; index < parents.size(); ++index) {
    if (matches.count(tree.Nodes()[index].item->PathText()) == 0) continue;
    // Ends at a node that is there already, so a circle ends too.
    std::size_t parent = parents[index];
    while (paths.insert(tree.Nodes()[parent].item->PathText()).second) parent = parents[parent];
  }
}

void AddAssociationsAmong(const Inventory& inventory, Paths& paths) {
  for (const char* const name : {"KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
    for (const InstanceView& association : inventory.InstancesOf(name)) {
      const bool areBothThere =
          paths.count(association.Text("Antecedent")) != 0 && paths.count(association.Text("Dependent")) != 0;
      if (areBothThere) paths.insert(association.PathText());
    }
  }
}

std::string OrNothing(const std::optional<unsigned>& number) {
  return number ? std::to_string(*number) : std::string();
}

}  // namespace

std::optional<VendorProduct> ParseVendorProduct(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return std::nullopt;
  const std::string_view both = text;
  const std::optional<std::uint16_t> vendor = ParseId(both.substr(0, colon));
  if (!vendor) return std::nullopt;
  VendorProduct ids{*vendor, std::nullopt};
  if (colon + 1 == text.size()) return ids;
  ids.product = ParseId(both.substr(colon + 1));
  return ids.product ? std::optional<VendorProduct>(ids) : std::nullopt;
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

Inventory Select(const Inventory& inventory, const Selection& selection, bool keepsWay) {
  if (!selection.IsGiven()) return inventory;
  Paths paths = PathsOfMatches(inventory, selection);
  if (keepsWay && selection.classes.empty()) {
    AddItemsOnTheWay(inventory, paths);
    AddAssociationsAmong(inventory, paths);
  }
  return inventory.Only([&paths](const InstanceView& item) { return paths.count(item.PathText()) != 0; });
}

std::string Describe(const Selection& selection) {
  std::vector<std::string> options;
  if (selection.ids) {
    const auto& product = selection.ids->product;
    options.push_back(fmt::format("-d {:04x}:{}", selection.ids->vendor,
                                  product ? fmt::format("{:04x}", *product) : std::string()));
  }
  if (selection.place) {
    options.push_back(
        fmt::format("-s {}:{}", OrNothing(selection.place->bus), OrNothing(selection.place->device)));
  }
  for (const std::string& name : selection.classes) options.push_back("--class " + name);
  return fmt::format("{}", fmt::join(options, " "));
}

}  // namespace cli
