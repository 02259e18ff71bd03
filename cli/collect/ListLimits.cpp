#include "cli/collect/ListLimits.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "cli/text/Text.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

/// The text between `key` and `terminator`; empty when either is missing.
std::string_view FieldOf(std::string_view line, std::string_view key, std::string_view terminator) {
  const std::size_t at = line.find(key);
  if (at == std::string_view::npos) return {};
  const std::size_t begin = at + key.size();
  const std::size_t end = line.find(terminator, at);
  if (end == std::string_view::npos || end < begin) return {};
  return line.substr(begin, end - begin);
}

/// The text after `key`; empty when that is missing.
std::string_view TextAfter(std::string_view line, std::string_view key) {
  const std::size_t at = line.find(key);
  return at == std::string_view::npos ? std::string_view() : line.substr(at + key.size());
}

/// The number that `text` begins with, at most `most`; a negative one is a large one.
unsigned int LeadingNumber(std::string_view text, unsigned int most) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\v\f"), text.size()));
  const bool isNegative = !text.empty() && text.front() == '-';
  if (isNegative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  unsigned int number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  if (parsed.ec == std::errc::result_out_of_range || (isNegative && number != 0)) return most;
  return std::min(number, most);
}

/// The length of `text` in an object path within an object path, in bytes.
std::uint64_t EscapedLength(std::string_view text) {
  constexpr std::uint64_t kMoreForAnEscape = 3;
  const auto escapes = std::count_if(text.begin(), text.end(), [](char c) { return c == '"' || c == '\\'; });
  return text.size() + kMoreForAnEscape * static_cast<std::uint64_t>(escapes);
}

/// Whether an "I:" line, in lower case, makes its record a hub.
bool IsOfHub(std::string_view line) {
  return FieldOf(line, "cls=", "(") == "09";
}

/// Adds the size of what the record makes that begins with the "T:" line `line`, in lower case.
void AddRecord(std::string_view line, ListSize& size) {
  // In a port: HubName, DeviceID, Name, PortNumber; in its link: hub and port. In a hub or device likewise.
  constexpr std::uint64_t kIdentifiersPerInstance = 6;
  constexpr std::uint64_t kFixedLength = std::string_view("Bus  Device  Port 00").size();
  constexpr unsigned int kMostPorts = 255;
  const unsigned int ports = LeadingNumber(TextAfter(line, "mxch="), kMostPorts);
  const unsigned int level = LeadingNumber(FieldOf(line, "lev=", " prnt="), 1);
  const std::uint64_t identifier = EscapedLength(FieldOf(line, "bus=", "lev=")) +
                                   EscapedLength(FieldOf(line, "dev#=", " spd=")) + kFixedLength;
  size.ports += ports;
  size.dependents += level;
  size.identifierBytes += kIdentifiersPerInstance * identifier * (ports + 1);
}

}  // namespace

ListSize ListSize::Of(std::string_view list) {
  ListSize size;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find('\n'), list.size());
    const std::string_view line = list.substr(0, end);
    if (list.front() == 'T') {
      AddRecord(ToLower(line), size);
      ++size.records;
    } else if (list.front() == 'I' && IsOfHub(ToLower(line))) {
      ++size.hubs;
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  // A hub has such a line for each of its alternate settings.
  size.hubs = std::min(size.hubs, size.records);
  return size;
}

std::uint64_t ListSize::Comparisons() const {
  return ports * std::max(hubs, dependents);
}

void CheckListLimits(std::string_view list, const std::string& name) {
  constexpr int kMebibyte = 20;
  const ListSize size = ListSize::Of(list);
  if (size.records > kMostRecords) {
    throw UserError(
        fmt::format("{} is too large: it has {} records (T: lines), and the limit is {}; if you have the "
                    "time and the memory, use --no-limits",
                    name, size.records, kMostRecords));
  }
  if (size.Comparisons() > kMostComparisons) {
    throw UserError(fmt::format(
        "{} is too large: {} ports times {} hubs and devices are {} comparisons, and the limit is {}; if you "
        "have the time and the memory, use --no-limits",
        name, size.ports, std::max(size.hubs, size.dependents), size.Comparisons(), kMostComparisons));
  }
  if (size.identifierBytes > kMostIdentifierBytes) {
    throw UserError(fmt::format(
        "{} is too large: its identifiers take {} MiB in the inventory, and the limit is {}; if you have the "
        "memory, use --no-limits",
        name, size.identifierBytes >> kMebibyte, kMostIdentifierBytes >> kMebibyte));
  }
}

}  // namespace cli
