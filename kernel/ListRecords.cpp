#include "kernel/ListRecords.h"

#include <algorithm>
#include <utility>

namespace kernel {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void AddRecord(ListRecord& record, std::vector<ListRecord>& records) {
  if (!record.lines.empty()) records.push_back(std::move(record));
  record = {};
}

std::vector<ListRecord> CutAtBlankLines(const std::vector<ListLine>& lines) {
  std::vector<ListRecord> records;
  ListRecord record;
  for (const ListLine& line : lines) {
    if (line.IsBlank()) {
      AddRecord(record, records);
    } else if (!record.lines.empty() || line.Type() == 'T') {
      record.lines.push_back(line);
    }
  }
  AddRecord(record, records);
  return records;
}

/// A string's line looks like one of the device's own, but all strings stand before the configurations.
bool IsOfConfiguration(const ListLine& line) {
  return line.Type() == 'C' || line.Type() == 'I' || line.Type() == 'E';
}

std::vector<ListRecord> CutBehindConfigurations(const ListRecord& block) {
  std::vector<ListRecord> records(1);
  for (const ListLine& line : block.lines) {
    std::vector<ListLine>& before = records.back().lines;
    if (line.Type() == 'T' && !before.empty() && IsOfConfiguration(before.back())) records.emplace_back();
    records.back().lines.push_back(line);
  }
  return records;
}

}  // namespace

char ListLine::Type() const {
  return text.size() > 1 && text[1] == ':' ? text[0] : '\0';
}

bool ListLine::IsBlank() const {
  return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

std::vector<ListLine> LinesOf(std::string_view text) {
  std::vector<ListLine> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back({text.substr(0, end), lines.size() + 1});
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::vector<ListRecord> RecordsOf(std::string_view text) {
  std::vector<ListRecord> records = CutAtBlankLines(LinesOf(text));
  if (records.size() == 1) return CutBehindConfigurations(records.front());
  return records;
}

std::string_view FieldOf(std::string_view line, std::string_view key) {
  const auto at = std::search(line.begin(), line.end(), key.begin(), key.end(),
                              [](char one, char other) { return LowerCase(one) == LowerCase(other); });
  if (at == line.end()) return {};
  std::string_view field = line.substr(static_cast<std::size_t>(at - line.begin()) + key.size());
  field.remove_prefix(std::min(field.find_first_not_of(kBlanks), field.size()));
  return field.substr(0, field.find_first_of(kBlanks));
}

}  // namespace kernel
