#include "tests/model/ListModel.h"

#include <algorithm>
#include <iterator>

namespace usbinfo_test {

namespace {

/// The position of a field: the type of its line, the key before it and the text that ends it; empty: the
/// line's end.
struct FieldPlace {
  Field field;
  char line;
  std::string_view key;
  std::string_view end;
};

constexpr FieldPlace kPlaces[] = {
    {kBus, 'T', "bus=", "lev="},
    {kLevel, 'T', "lev=", " prnt="},
    {kParent, 'T', "prnt=", " port="},
    {kPort, 'T', "port=", " cnt="},
    {kCount, 'T', "cnt=", "dev#="},
    {kNumber, 'T', "dev#=", " spd="},
    {kSpeed, 'T', "spd=", "mxch="},
    {kMaxChildren, 'T', "mxch=", ""},
    {kVersion, 'D', "ver=", "cls"},
    {kClass, 'D', "cls=", "sub"},
    {kSubClass, 'D', "sub=", "prot"},
    {kProtocol, 'D', "prot=", "mxps"},
    {kConfigs, 'D', "#cfgs=", ""},
    {kVendor, 'P', "vendor=", " prodid"},
    {kProductId, 'P', "prodid=", " rev"},
    {kRevision, 'P', "rev=", ""},
    {kPower, 'C', "mxpwr=", "ma"},
    {kDriver, 'I', "driver=", ""},
    {kInterfaceClass, 'I', "cls=", "("},
    {kInterfaceSubClass, 'I', "sub=", "prot"},
    {kInterfaceNumber, 'I', "if#=", "alt"},
    {kInterfaceProtocol, 'I', "prot=", "driver"},
};

constexpr char Small(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// Splits `text` at the first `word`, whatever the case of its letters; false when there is none.
bool SplitAt(std::string_view text, std::string_view word, std::string_view& front, std::string_view& back) {
  const auto* const found = std::search(text.begin(), text.end(), word.begin(), word.end(),
                                        [](char left, char right) { return Small(left) == right; });
  if (found == text.end()) return false;
  const auto length = static_cast<std::size_t>(found - text.begin());
  front = text.substr(0, length);
  back = text.substr(length + word.size());
  return true;
}

std::string_view ValueIn(std::string_view line, std::string_view key, std::string_view end) {
  std::string_view before;
  std::string_view value;
  std::string_view rest;
  if (!SplitAt(line, key, before, value)) return {};
  if (end.empty()) return value;
  return SplitAt(value, end, before, rest) ? before : std::string_view();
}

bool Has(std::string_view text, std::string_view word) {
  return text.find(word) != std::string_view::npos;
}

bool HasInAnyCase(std::string_view text, std::string_view word) {
  std::string_view front;
  std::string_view back;
  return SplitAt(text, word, front, back);
}

int UsbHostIn(std::string_view line) {
  if (HasInAnyCase(line, "ohci")) return 3;
  if (HasInAnyCase(line, "uhci")) return 2;
  return HasInAnyCase(line, "ehci") ? 4 : 1;
}

}  // namespace

std::string ListRecord::Version() const {
  std::string kept(fields[kVersion].substr(0, fields[kVersion].find('\0')));
  kept.erase(std::remove(kept.begin(), kept.end(), '.'), kept.end());
  return kept;
}

ListModel::ListModel(std::string_view text) {
  const std::vector<Line> lines = Split(text);
  for (const Line& line : lines) {
    if (line.type.empty() || !Has("TSDPIC", line.type)) fUnmatched.push_back(line.type);
  }
  const Line* const end = lines.data() + lines.size();
  for (const Line* start = lines.data(); start != end;) {
    const Line* const topology = std::find_if(start, end, [](const Line& line) { return line.type == "T"; });
    if (topology == end) break;
    const Line* const closing =
        std::find_if(topology, end, [](const Line& line) { return line.type == "E" || line.type == "\n"; });
    const Line* const after = closing == end ? end : closing + 1;
    fRecords.push_back(Read(start, after));
    start = after;
  }
}

std::vector<ListModel::Line> ListModel::Split(std::string_view text) {
  std::vector<Line> lines;
  const bool skipsLast = !text.empty() && text.front() == '\n';
  while (true) {
    const std::size_t length = text.find('\n');
    lines.push_back({std::string(text.substr(0, 1)), text.substr(0, length)});
    if (length == std::string_view::npos) break;
    text.remove_prefix(length + 1);
  }
  if (skipsLast) lines.pop_back();
  return lines;
}

ListRecord ListModel::Read(const Line* first, const Line* after) {
  ListRecord record;
  const auto lastOf = [&](char type) {
    const auto found =
        std::find_if(std::make_reverse_iterator(after), std::make_reverse_iterator(first),
                     [type](const Line& line) { return !line.type.empty() && line.type[0] == type; });
    return found.base() == first ? std::string_view() : std::prev(found.base())->text;
  };
  char type = '\0';
  std::string_view line;
  for (const FieldPlace& place : kPlaces) {
    if (place.line != type) line = lastOf(type = place.line);
    record.fields[place.field] = ValueIn(line, place.key, place.end);
  }
  for (const Line* each = first; each != after; ++each) {
    if (each->type == "S") ReadStrings(each->text, record);
    if (each->type == "I" && ValueIn(each->text, "cls=", "(") == "09") record.isHub = true;
  }
  return record;
}

void ListModel::ReadStrings(std::string_view line, ListRecord& record) {
  if (Has(line, "Product")) {
    record.product = ValueIn(line, "product=", "");
    record.usbHost = UsbHostIn(line);
  }
  if (Has(line, "SerialNumber")) record.serial = ValueIn(line, "serialnumber=", "");
  if (Has(line, "Manufacturer")) record.manufacturer = ValueIn(line, "manufacturer=", "");
}

}  // namespace usbinfo_test
