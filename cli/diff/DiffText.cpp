// Lines for people; see the header.
#include "cli/diff/DiffText.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "cli/model/Wording.h"
#include "cli/text/Text.h"

using nlohmann::json;

namespace cli {

namespace {

std::string NounOf(ItemKind kind) {
  switch (kind) {
    case ItemKind::kController:
      return "controller";
    case ItemKind::kHub:
      return "hub";
    case ItemKind::kPort:
      return "port";
    default:
      return "device";
  }
}

/// The model: vendor and product number, and the product string, as far as the thing has them.
std::string DescribeModel(const SavedItem& item) {
  const std::string id = IdOf(item);
  const std::string product = ProductOf(item);
  if (product.empty()) return id.empty() ? id : id + " (no name)";
  return id + (id.empty() ? "" : " ") + QuoteForTerminal(product);
}

std::string DescribeSerial(const SavedItem& item) {
  const std::string serial = SerialOf(item);
  return serial.empty() ? serial : ", serial " + QuoteForTerminal(serial);
}

std::string WithBlank(const std::string& text) {
  return text.empty() ? text : " " + text;
}

std::string DescribeThing(const Thing& thing) {
  const std::string ports = thing.ports == 0 ? "" : ", with " + Count(thing.ports, "port");
  return NounOf(thing.item->kind) + WithBlank(DescribeModel(*thing.item)) + DescribeSerial(*thing.item) +
         ports;
}

/// Where what is there now is another model, the old one stands before it.
std::string DescribeChanged(const ThingChange& change) {
  const std::string before = DescribeModel(*change.before.item);
  const std::string after = DescribeModel(*change.after.item);
  const std::string models = before == after ? after : before + " -> " + after;
  return NounOf(change.after.item->kind) + WithBlank(models) + DescribeSerial(*change.after.item);
}

std::string DescribeNumber(const std::string& property, std::uint64_t number) {
  const bool isId = property == "VendorID" || property == "USBDeviceID";
  return isId ? fmt::format("{:04x}", number) : std::to_string(number);
}

std::string DescribeValue(const std::string& property, const json& value) {
  if (value.is_number()) return DescribeNumber(property, value.get<std::uint64_t>());
  if (value.is_array()) {
    std::vector<std::string> elements;
    for (const json& element : value) elements.push_back(QuoteForTerminal(element.get<std::string>()));
    return fmt::format("{}", fmt::join(elements, ", "));
  }
  const std::string text = value.is_null() ? "" : Given(value.get<std::string>());
  return text.empty() ? "none" : QuoteForTerminal(text);
}

/// In words, where they tell the two apart.
std::string DescribeSpeeds(ItemKind kind, const PropertyChange& change) {
  const auto inWords = [kind](const json& value) {
    if (!value.is_number()) return std::string();
    const auto number = value.get<std::uint64_t>();
    return kind == ItemKind::kPort ? FormatSpeed(number) : FormatSpeedClass(number);
  };
  const std::string before = inWords(change.before);
  const std::string after = inWords(change.after);
  if (before.empty() || after.empty() || before == after) return std::string();
  return before + " -> " + after;
}

std::string DescribeProperty(ItemKind kind, const PropertyChange& change) {
  const std::string speeds = change.name == "Speed" ? DescribeSpeeds(kind, change) : std::string();
  if (!speeds.empty()) return "    Speed: " + speeds + "\n";
  return fmt::format("    {}: {} -> {}\n", change.name, DescribeValue(change.name, change.before),
                     DescribeValue(change.name, change.after));
}

/// What is told of one thing, and where in the text it belongs: of one kind at one place, what went stands
/// ahead of what came.
struct Entry {
  const Place* place;
  ItemKind kind;
  char mark;
  std::string line;
  std::string properties;

  bool operator<(const Entry& other) const {
    static const std::string kMarks = "->~+";
    const auto rank = kMarks.find(mark);
    const auto otherRank = kMarks.find(other.mark);
    return std::tie(*place, kind, rank) < std::tie(*other.place, other.kind, otherRank);
  }
};

Entry EntryOf(char mark, const Thing& thing) {
  return {&thing.place, thing.item->kind, mark, DescribePlace(thing.place) + ": " + DescribeThing(thing), ""};
}

Entry EntryOf(char mark, const ThingChange& change) {
  std::string properties;
  for (const PropertyChange& property : change.properties) {
    properties += DescribeProperty(change.after.item->kind, property);
  }
  const std::string from = mark == '>' ? DescribePlace(change.before.place) + " -> " : "";
  return {&change.after.place, change.after.item->kind, mark,
          from + DescribePlace(change.after.place) + ": " + DescribeChanged(change), properties};
}

std::vector<Entry> EntriesOf(const InventoryDifference& difference) {
  std::vector<Entry> entries;
  for (const Thing& thing : difference.removed) entries.push_back(EntryOf('-', thing));
  for (const Thing& thing : difference.added) entries.push_back(EntryOf('+', thing));
  for (const ThingChange& change : difference.moved) entries.push_back(EntryOf('>', change));
  for (const ThingChange& change : difference.changed) entries.push_back(EntryOf('~', change));
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
