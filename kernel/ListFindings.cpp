#include "kernel/ListFindings.h"

#include <algorithm>
#include <map>
#include <utility>

#include "kernel/ListRecords.h"

namespace kernel {

namespace {

using Code = ListFinding::Code;
using LineNumbers = std::vector<std::size_t>;

/// The name of the string in an "S:" line, such as "Product".
std::string_view StringName(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" :", 1), line.size()));
  return line.substr(0, line.find('='));
}

/// Whether the kernel writes a string of that name.
bool IsStringName(std::string_view name) {
  return name == "Manufacturer" || name == "Product" || name == "SerialNumber";
}

bool DescribesDevice(const ListLine& line) {
  return line.Letter() == 'T' || line.Letter() == 'D' || line.Letter() == 'P';
}

LineNumbers LinesOfType(const ListRecord& record, char type) {
  LineNumbers numbers;
  for (const ListLine& line : record.lines) {
    if (line.Letter() == type) numbers.push_back(line.number);
  }
  return numbers;
}

LineNumbers LinesBehindStrings(const ListRecord& record) {
  LineNumbers numbers;
  bool isBehindString = false;
  for (const ListLine& line : record.lines) {
    const bool isString = line.Letter() == 'S';
    const bool isForged = DescribesDevice(line) || (isString && !IsStringName(StringName(line.text)));
    if (isBehindString && isForged) numbers.push_back(line.number);
    isBehindString = isBehindString || isString;
  }
  return numbers;
}

std::map<std::string_view, LineNumbers> LinesOfStrings(const ListRecord& record) {
  std::map<std::string_view, LineNumbers> lines;
  for (const ListLine& line : record.lines) {
    if (line.Letter() == 'S') lines[StringName(line.text)].push_back(line.number);
  }
  return lines;
}

/// What a record's device is called: its bus and its number, as printed.
using DeviceFields = std::pair<std::string_view, std::string_view>;

DeviceFields FieldsOf(const ListRecord& record) {
  const std::string_view topology = record.lines.front().text;
  return {FieldOf(topology, "Bus="), FieldOf(topology, "Dev#=")};
}

/// Adds a finding where there are as many lines as that or more.
void AddFinding(Code code, std::size_t fewest, const LineNumbers& lines, const DeviceFields& device,
                std::vector<ListFinding>& findings) {
  if (lines.size() < fewest) return;
  findings.push_back({code, lines, std::string(device.first), std::string(device.second)});
}

void FindIn(const ListRecord& record, std::vector<ListFinding>& findings) {
  const DeviceFields device = FieldsOf(record);
  AddFinding(Code::kTwoTopologyLines, 2, LinesOfType(record, 'T'), device, findings);
  AddFinding(Code::kTwoDescriptorLines, 2, LinesOfType(record, 'D'), device, findings);
  AddFinding(Code::kTwoProductLines, 2, LinesOfType(record, 'P'), device, findings);
  AddFinding(Code::kLineBehindString, 1, LinesBehindStrings(record), device, findings);
  for (const auto& [name, lines] : LinesOfStrings(record)) {
    AddFinding(Code::kTwoStrings, 2, lines, device, findings);
  }
}

std::string_view WithoutZeros(std::string_view digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

void FindTwoDevices(const std::vector<ListRecord>& records, std::vector<ListFinding>& findings) {
  std::map<DeviceFields, std::vector<const ListRecord*>> devices;
  for (const ListRecord& record : records) {
    const auto [bus, number] = FieldsOf(record);
    devices[{WithoutZeros(bus), WithoutZeros(number)}].push_back(&record);
  }
  for (const auto& [device, sameDevice] : devices) {
    LineNumbers lines;
    for (const ListRecord* const record : sameDevice) lines.push_back(record->lines.front().number);
    AddFinding(Code::kTwoDevices, 2, lines, FieldsOf(*sameDevice.front()), findings);
  }
}

}  // namespace

std::string_view NameOf(ListFinding::Code code) {
  switch (code) {
    case Code::kTwoTopologyLines:
      return "two-t-lines";
    case Code::kTwoDescriptorLines:
      return "two-d-lines";
    case Code::kTwoProductLines:
      return "two-p-lines";
    case Code::kLineBehindString:
      return "line-behind-string";
    case Code::kTwoStrings:
      return "two-strings";
    case Code::kTwoDevices:
      return "two-devices";
  }
  return {};
}

std::vector<ListFinding> FindingsIn(std::string_view text) {
  std::vector<ListFinding> findings;
  const std::vector<ListRecord> records = RecordsOf(text);
  for (const ListRecord& record : records) FindIn(record, findings);
  FindTwoDevices(records, findings);
  return findings;
}

}  // namespace kernel
