#include "cli/diff/DiffText.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/model/DeviceText.h"
#include "cli/model/OriginText.h"
#include "cli/model/Speed.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

std::string NounOf(ClassId classId) {
  switch (classId) {
    case ClassId::kController:
      return "controller";
    case ClassId::kHub:
      return "hub";
    case ClassId::kPort:
      return "port";
    default:
      return "device";
  }
}

/// What a device is for, where that is known; else its class.
std::string DescribeKind(const PlacedItem& placed) {
  const bool isKnown = placed.device != nullptr && !placed.device->kinds.empty();
  return isKnown ? fmt::format("{}", fmt::join(placed.device->kinds, ", ")) : NounOf(placed.item->Class());
}

/// The model: vendor and product number and the product string, those of them that the item has.
std::string DescribeModel(const PlacedItem& placed) {
  const std::string id = FormatId(*placed.item);
  const std::string product = ProductOf(*placed.item, placed.device);
  if (product.empty()) return id.empty() ? id : id + " (no name)";
  return id + (id.empty() ? "" : " ") + QuoteForTerminal(product);
}

std::string DescribeSerial(const PlacedItem& placed) {
  const std::string serial = SerialOf(*placed.item, placed.device);
  return serial.empty() ? serial : ", serial " + QuoteForTerminal(serial);
}

std::string WithBlank(const std::string& text) {
  return text.empty() ? text : " " + text;
}

std::string DescribeItem(const PlacedItem& placed) {
  const std::string ports = placed.ports == 0 ? "" : ", with " + Count(placed.ports, "port");
  return DescribeKind(placed) + WithBlank(DescribeModel(placed)) + DescribeSerial(placed) + ports;
}

/// The model, after the old one if that was different.
std::string DescribeChanged(const ItemChange& change) {
  const std::string before = DescribeModel(change.before);
  const std::string after = DescribeModel(change.after);
  const std::string models = before == after ? after : before + " -> " + after;
  const char* const doubt = change.isCertain ? "" : ", moved, it seems";
  return DescribeKind(change.after) + WithBlank(models) + DescribeSerial(change.after) + doubt;
}

constexpr const char* kNothing = "none";

/// A value of the property, as text for people.
struct ValueDescription {
  const PropertyChange& change;

  std::string operator()(std::monostate) const { return kNothing; }
  std::string operator()(std::uint64_t number) const {
    if (!change.property) return fmt::format("{} mA", number);
    const bool isId = change.property == PropertyId::kVendorID || change.property == PropertyId::kUSBDeviceID;
    return isId ? fmt::format("{:04x}", number) : std::to_string(number);
  }
  std::string operator()(double rate) const { return FormatRate(rate); }
  std::string operator()(const std::string& text) const {
    const std::string sent = SentString(text);
    return sent.empty() ? kNothing : QuoteForTerminal(sent);
  }
  std::string operator()(const std::vector<std::string>& texts) const {
    if (texts.empty()) return kNothing;
    if (!change.property) return fmt::format("{}", fmt::join(texts, ", "));
    std::vector<std::string> elements;
    elements.reserve(texts.size());
    for (const std::string& text : texts) elements.push_back(QuoteForTerminal(text));
    return fmt::format("{}", fmt::join(elements, ", "));
  }
  std::string operator()(const Reference& reference) const { return QuoteForTerminal(reference.path); }
  std::string operator()(const std::vector<InterfaceFacts>& interfaces) const {
    return Count(interfaces.size(), "interface");
  }
};

/// Both speeds as classes, where these differ; empty otherwise.
std::string DescribeSpeeds(ClassId classId, const PropertyChange& change) {
  const auto inWords = [classId](const ComparedValue& value) {
    const auto* const number = std::get_if<std::uint64_t>(&value);
    if (number == nullptr) return std::string();
    return classId == ClassId::kPort ? FormatSpeed(*number) : FormatSpeedClass(*number);
  };
  const std::string before = inWords(change.before);
  const std::string after = inWords(change.after);
  if (before.empty() || after.empty() || before == after) return {};
  return before + " -> " + after;
}

/// "1.0" for an interface of configuration 1; "1.0 setting 1" for an alternate one.
std::string NameOf(const InterfaceFacts& interface) {
  const std::string name = fmt::format("{}.{}", interface.configuration, interface.number);
  return interface.setting == 0 ? name : fmt::format("{} setting {}", name, interface.setting);
}

/// "03/01/01, driver "usbhid"".
std::string Describe(const InterfaceFacts& interface) {
  const std::string driver = interface.driver ? QuoteForTerminal(*interface.driver) : kNothing;
  return fmt::format("{:02x}/{:02x}/{:02x}, driver {}{}", interface.classCode, interface.subclass,
                     interface.protocol, driver, interface.isActive ? "" : ", not active");
}

/// A line for each interface that differs.
std::string DescribeInterfaces(const std::vector<InterfaceFacts>& before,
                               const std::vector<InterfaceFacts>& after) {
  std::map<std::string, std::pair<std::string, std::string>> interfaces;
  for (const InterfaceFacts& interface : before) interfaces[NameOf(interface)].first = Describe(interface);
  for (const InterfaceFacts& interface : after) interfaces[NameOf(interface)].second = Describe(interface);
  std::string lines;
  for (const auto& [name, texts] : interfaces) {
    if (texts.first == texts.second) continue;
    lines += fmt::format("    interface {}: {} -> {}\n", name, texts.first.empty() ? kNothing : texts.first,
                         texts.second.empty() ? kNothing : texts.second);
  }
  return lines;
}

std::string DescribeProperty(ClassId classId, const PropertyChange& change) {
  const auto* const before = std::get_if<std::vector<InterfaceFacts>>(&change.before);
  const auto* const after = std::get_if<std::vector<InterfaceFacts>>(&change.after);
  if (before != nullptr && after != nullptr) {
    std::string lines = DescribeInterfaces(*before, *after);
    if (!lines.empty()) return lines;
  }
  if (change.property == PropertyId::kSpeed) {
    const std::string speeds = DescribeSpeeds(classId, change);
    if (!speeds.empty()) return "    Speed: " + speeds + "\n";
  }
  const ValueDescription describe{change};
  return fmt::format("    {}: {} -> {}\n", change.name, std::visit(describe, change.before),
                     std::visit(describe, change.after));
}

/// What is reported of one item, and its order in the text: of one class at one place, removed items come
/// before added ones.
struct Entry {
  const Place* place;
  ClassId classId;
  char mark;
  std::string line;
  std::string properties;

  bool operator<(const Entry& other) const {
    static const std::string kMarks = "->~+";
    const auto rank = kMarks.find(mark);
    const auto otherRank = kMarks.find(other.mark);
    return std::tie(*place, classId, rank) < std::tie(*other.place, other.classId, otherRank);
  }
};

Entry EntryOf(char mark, const PlacedItem& placed) {
  return {&placed.place, placed.item->Class(), mark, DescribePlace(placed) + ": " + DescribeItem(placed), ""};
}

Entry EntryOf(char mark, const ItemChange& change) {
  std::string properties;
  for (const PropertyChange& property : change.properties) {
    properties += DescribeProperty(change.after.item->Class(), property);
  }
  const std::string from = mark == '>' ? DescribePlace(change.before) + " -> " : "";
  return {&change.after.place, change.after.item->Class(), mark,
          from + DescribePlace(change.after) + ": " + DescribeChanged(change), properties};
}

std::vector<Entry> EntriesOf(const InventoryDifference& difference) {
  std::vector<Entry> entries;
  for (const PlacedItem& placed : difference.removed) entries.push_back(EntryOf('-', placed));
  for (const PlacedItem& placed : difference.added) entries.push_back(EntryOf('+', placed));
  for (const ItemChange& change : difference.moved) entries.push_back(EntryOf('>', change));
  for (const ItemChange& change : difference.changed) entries.push_back(EntryOf('~', change));
  std::stable_sort(entries.begin(), entries.end());
  return entries;
}

std::string Colored(char mark, const std::string& line) {
  const char* const color = mark == '-' ? "31" : mark == '+' ? "32" : mark == '~' ? "33" : "36";
  return fmt::format("\x1B[{}m{}\x1B[0m", color, line);
}

std::string DescribeMachine(const ComparedMachine& machine) {
  const bool isKnown = machine.origin && machine.origin->collected;
  return fmt::format("{} ({})", QuoteForTerminal(machine.system),
                     isKnown ? TimeOf(*machine.origin) : "time not known");
}

/// "1 added, 2 removed"; what there is none of is left out.
std::string DescribeCounts(const InventoryDifference& difference) {
  std::vector<std::string> counts;
  const std::pair<std::size_t, const char*> all[] = {{difference.added.size(), "added"},
                                                     {difference.removed.size(), "removed"},
                                                     {difference.moved.size(), "moved"},
                                                     {difference.changed.size(), "changed"}};
  for (const auto& [count, verb] : all) {
    if (count > 0) counts.push_back(fmt::format("{} {}", count, verb));
  }
  return fmt::format("{}", fmt::join(counts, ", "));
}

}  // namespace

std::string DescribePlace(const Place& place) {
  std::string text = place.hasBus ? fmt::format("bus {}", place.bus) : QuoteForTerminal(place.identifier);
  if (!place.ports.empty()) text += fmt::format(", port {}", fmt::join(place.ports, "."));
  return text;
}

std::string DescribePlace(const PlacedItem& placed) {
  return placed.name.empty() ? DescribePlace(placed.place) : placed.name;
}

std::string RenderDiffText(const InventoryDifference& difference, bool isColored) {
  if (difference.IsEmpty()) return std::string();
  std::string text =
      fmt::format("{} -> {}\n", DescribeMachine(difference.before), DescribeMachine(difference.after));
  for (const Entry& entry : EntriesOf(difference)) {
    const std::string line = fmt::format("{} {}", entry.mark, entry.line);
    text += (isColored ? Colored(entry.mark, line) : line) + "\n" + entry.properties;
  }
  return text + DescribeCounts(difference) + "\n";
}

}  // namespace cli
