#include "cli/diff/DiffText.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "cli/model/DeviceText.h"
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

/// The model: vendor and product number and the product string, those of them that the item has.
std::string DescribeModel(const PlacedItem& placed) {
  const std::string id = FormatId(*placed.item);
  const std::string product = ProductOf(*placed.item, placed.facts);
  if (product.empty()) return id.empty() ? id : id + " (no name)";
  return id + (id.empty() ? "" : " ") + QuoteForTerminal(product);
}

std::string DescribeSerial(const PlacedItem& placed) {
  const std::string serial = SerialOf(*placed.item, placed.facts);
  return serial.empty() ? serial : ", serial " + QuoteForTerminal(serial);
}

std::string WithBlank(const std::string& text) {
  return text.empty() ? text : " " + text;
}

std::string DescribeItem(const PlacedItem& placed) {
  const std::string ports = placed.ports == 0 ? "" : ", with " + Count(placed.ports, "port");
  return NounOf(placed.item->Class()) + WithBlank(DescribeModel(placed)) + DescribeSerial(placed) + ports;
}

/// The model, after the old one if that was different.
std::string DescribeChanged(const ItemChange& change) {
  const std::string before = DescribeModel(change.before);
  const std::string after = DescribeModel(change.after);
  const std::string models = before == after ? after : before + " -> " + after;
  return NounOf(change.after.item->Class()) + WithBlank(models) + DescribeSerial(change.after);
}

/// A value of the property, as text for people.
struct ValueDescription {
  PropertyId property;

  std::string operator()(std::monostate) const { return "none"; }
  std::string operator()(std::uint64_t number) const {
    const bool isId = property == PropertyId::kVendorID || property == PropertyId::kUSBDeviceID;
    return isId ? fmt::format("{:04x}", number) : std::to_string(number);
  }
  std::string operator()(const std::string& text) const {
    const std::string sent = SentString(text);
    return sent.empty() ? "none" : QuoteForTerminal(sent);
  }
  std::string operator()(const std::vector<std::string>& texts) const {
    std::vector<std::string> elements;
    elements.reserve(texts.size());
    for (const std::string& text : texts) elements.push_back(QuoteForTerminal(text));
    return fmt::format("{}", fmt::join(elements, ", "));
  }
  std::string operator()(const Reference& reference) const { return QuoteForTerminal(reference.path); }
};

/// Both speeds as classes, where these differ; empty otherwise.
std::string DescribeSpeeds(ClassId classId, const PropertyChange& change) {
  const auto inWords = [classId](const Value& value) {
    const auto* const number = std::get_if<std::uint64_t>(&value);
    if (number == nullptr) return std::string();
    return classId == ClassId::kPort ? FormatSpeed(*number) : FormatSpeedClass(*number);
  };
  const std::string before = inWords(change.before);
  const std::string after = inWords(change.after);
  if (before.empty() || after.empty() || before == after) return {};
  return before + " -> " + after;
}

std::string DescribeProperty(ClassId classId, const PropertyChange& change) {
  if (change.property == PropertyId::kSpeed) {
    const std::string speeds = DescribeSpeeds(classId, change);
    if (!speeds.empty()) return "    Speed: " + speeds + "\n";
  }
  const ValueDescription describe{change.property};
  return fmt::format("    {}: {} -> {}\n", schema::NameOf(change.property),
                     std::visit(describe, change.before), std::visit(describe, change.after));
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
  return {&placed.place, placed.item->Class(), mark,
          DescribePlace(placed.place) + ": " + DescribeItem(placed), ""};
}

Entry EntryOf(char mark, const ItemChange& change) {
  std::string properties;
  for (const PropertyChange& property : change.properties) {
    properties += DescribeProperty(change.after.item->Class(), property);
  }
  const std::string from = mark == '>' ? DescribePlace(change.before.place) + " -> " : "";
  return {&change.after.place, change.after.item->Class(), mark,
          from + DescribePlace(change.after.place) + ": " + DescribeChanged(change), properties};
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

}  // namespace

std::string DescribePlace(const Place& place) {
  std::string text = place.hasBus ? fmt::format("bus {}", place.bus) : QuoteForTerminal(place.identifier);
  if (!place.ports.empty()) text += fmt::format(", port {}", fmt::join(place.ports, "."));
  return text;
}

std::string RenderDiffText(const InventoryDifference& difference, bool isColored) {
  if (difference.IsEmpty()) return std::string();
  std::string text;
  if (difference.oldSystem != difference.newSystem) {
    text = fmt::format("system {} -> {}\n", QuoteForTerminal(difference.oldSystem),
                       QuoteForTerminal(difference.newSystem));
  }
  for (const Entry& entry : EntriesOf(difference)) {
    const std::string line = fmt::format("{} {}", entry.mark, entry.line);
    text += (isColored ? Colored(entry.mark, line) : line) + "\n" + entry.properties;
  }
  return text;
}

}  // namespace cli
