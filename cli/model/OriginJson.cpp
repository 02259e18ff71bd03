#include "cli/model/OriginJson.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "cli/model/JsonNode.h"
#include "cli/model/JsonValues.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

void WriteFinding(JsonWriter& json, const Finding& finding) {
  json.BeginObject();
  WriteMember(json, "code", finding.code);
  WriteList(json, "lines", finding.lines, [&](std::uint64_t line) { json.Number(line); });
  WriteMember(json, "device", finding.device);
  json.EndObject();
}

void WriteRepair(JsonWriter& json, const Repair& repair) {
  json.BeginObject();
  WriteMember(json, "code", repair.code);
  WriteMember(json, "count", repair.count);
  json.EndObject();
}

void WriteMasking(JsonWriter& json, const Masking& masking) {
  json.BeginObject();
  WriteMember(json, "key", masking.key);
  json.EndObject();
}

void WriteSelection(JsonWriter& json, const SelectedBy& selection) {
  json.BeginObject();
  WriteMember(json, "classes", selection.classes);
  WriteMember(json, "ids", selection.ids);
  WriteMember(json, "places", selection.places);
  json.EndObject();
}

std::uint64_t ReadCount(const JsonNode& node) {
  return node.Number(kMost);
}

Finding ReadFinding(const JsonNode& node) {
  return {.code = node.Member("code").Text(),
          .lines = node.Member("lines").Each(ReadCount),
          .device = node.Member("device").Text()};
}

Repair ReadRepair(const JsonNode& node) {
  return {.code = node.Member("code").Text(), .count = ReadCount(node.Member("count"))};
}

Masking ReadMasking(const JsonNode& node) {
  return {.key = node.Member("key").OptionalText()};
}

SelectedBy ReadSelection(const JsonNode& node) {
  return {.classes = node.Member("classes").Texts(),
          .ids = node.Member("ids").Texts(),
          .places = node.Member("places").Texts()};
}

std::string ReadTime(const JsonNode& node) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  std::string time = node.Text();
  const auto fits = [](char c, char ofForm) { return ofForm == '0' ? c >= '0' && c <= '9' : c == ofForm; };
  if (!std::equal(time.begin(), time.end(), kForm.begin(), kForm.end(), fits)) {
    node.Refuse(R"(must be a time in UTC, such as "2026-11-21T12:00:00Z")");
  }
  return time;
}

}  // namespace

void WriteOrigin(JsonWriter& json, const Origin& origin) {
  json.BeginObject();
  WriteMember(json, "source", origin.source);
  WriteMember(json, "collected", origin.collected);
  WriteMember(json, "program", origin.program);
  WriteMember(json, "machine", origin.machine);
  WriteList(json, "findings", origin.findings, [&](const Finding& finding) { WriteFinding(json, finding); });
  WriteList(json, "repairs", origin.repairs, [&](const Repair& repair) { WriteRepair(json, repair); });
  WriteOptional(json, "masked", origin.masked, [&](const Masking& masking) { WriteMasking(json, masking); });
  WriteOptional(json, "selection", origin.selection,
                [&](const SelectedBy& selection) { WriteSelection(json, selection); });
  json.EndObject();
}

Origin ReadOrigin(const JsonNode& node) {
  return {.source = node.Member("source").OneOf({"sysfs", "plugin", "list"}),
          .collected = node.Member("collected").Optional(ReadTime),
          .program = node.Member("program").Text(),
          .machine = node.Member("machine").OptionalText(),
          .findings = node.Member("findings").Each(ReadFinding),
          .repairs = node.Member("repairs").Each(ReadRepair),
          .masked = node.Member("masked").Optional(ReadMasking),
          .selection = node.Member("selection").Optional(ReadSelection)};
}

}  // namespace cli
