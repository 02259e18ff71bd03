#include "cli/diff/DiffJson.h"

#include <fmt/format.h>

#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/JsonValues.h"
#include "cli/model/KernelJson.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

constexpr const char* kSchema = "usbinfo.diff/2";

void WriteKernel(JsonWriter& json, const PlacedItem& placed) {
  json.Key("kernel");
  if (placed.device != nullptr) {
    WriteDeviceFacts(json, *placed.device);
  } else if (placed.port != nullptr) {
    WritePortFacts(json, *placed.port);
  } else {
    json.Null();
  }
}

void Write(JsonWriter& json, const PlacedItem& placed) {
  json.BeginObject();
  WriteMember(json, "class", placed.item->Schema().name);
  WriteMember(json, "path", placed.item->Path());
  WriteMember(json, "place", DescribePlace(placed));
  json.Key("properties");
  WriteProperties(json, *placed.item);
  WriteKernel(json, placed);
  json.EndObject();
}

struct ValueWriter {
  JsonWriter& json;

  void operator()(std::monostate) const { json.Null(); }
  void operator()(std::uint64_t number) const { json.Number(number); }
  void operator()(double number) const { json.Decimal(number); }
  void operator()(const std::string& text) const { json.String(text); }
  void operator()(const std::vector<std::string>& texts) const { WriteTexts(json, texts); }
  void operator()(const Reference& reference) const { json.String(reference.path); }
  void operator()(const std::vector<InterfaceFacts>& interfaces) const {
    json.BeginArray();
    for (const InterfaceFacts& interface : interfaces) WriteInterfaceFacts(json, interface);
    json.EndArray();
  }
};

void Write(JsonWriter& json, const PropertyChange& change) {
  json.BeginObject();
  WriteMember(json, "name", std::string(change.name));
  json.Key("from");
  std::visit(ValueWriter{json}, change.before);
  json.Key("to");
  std::visit(ValueWriter{json}, change.after);
  json.EndObject();
}

void WriteChange(JsonWriter& json, const ItemChange& change) {
  json.Key("old");
  Write(json, change.before);
  json.Key("new");
  Write(json, change.after);
  WriteList(json, "properties", change.properties,
            [&](const PropertyChange& property) { Write(json, property); });
}

void WriteMoved(JsonWriter& json, const ItemChange& change) {
  json.BeginObject();
  json.Key("certain");
  json.Bool(change.isCertain);
  WriteChange(json, change);
  json.EndObject();
}

void WriteChanged(JsonWriter& json, const ItemChange& change) {
  json.BeginObject();
  WriteChange(json, change);
  json.EndObject();
}

void WriteMachine(JsonWriter& json, const ComparedMachine& machine) {
  json.BeginObject();
  WriteMember(json, "system", machine.system);
  const auto member = [&](std::string_view name, const std::optional<std::string>& value) {
    WriteMember(json, name, value);
  };
  const std::optional<Origin>& origin = machine.origin;
  member("source", origin ? std::optional(origin->source) : std::nullopt);
  member("collected", origin ? origin->collected : std::nullopt);
  member("machine", origin ? origin->machine : std::nullopt);
  json.EndObject();
}

void WriteItems(JsonWriter& json, std::string_view key, const std::vector<PlacedItem>& items) {
  WriteList(json, key, items, [&](const PlacedItem& placed) { Write(json, placed); });
}

}  // namespace

void WriteDiff(JsonWriter& json, const InventoryDifference& difference) {
  json.BeginObject();
  json.Key("schema");
  json.String(kSchema);
  json.Key("old");
  WriteMachine(json, difference.before);
  json.Key("new");
  WriteMachine(json, difference.after);
  WriteItems(json, "added", difference.added);
  WriteItems(json, "removed", difference.removed);
  WriteList(json, "moved", difference.moved, [&](const ItemChange& change) { WriteMoved(json, change); });
  WriteList(json, "changed", difference.changed,
            [&](const ItemChange& change) { WriteChanged(json, change); });
  json.EndObject();
}

std::string RenderDiffJson(const InventoryDifference& difference) {
  JsonWriter json(JsonWriter::Layout::kIndented);
  WriteDiff(json, difference);
  return json.Take() + "\n";
}

std::string DiffMachineJson(const ComparedMachine& machine) {
  JsonWriter json(JsonWriter::Layout::kOneLine);
  WriteMachine(json, machine);
  return json.Take();
}

std::string DiffItemJson(const DiffEntry& entry) {
  JsonWriter json(JsonWriter::Layout::kOneLine);
  if (entry.change == nullptr) {
    Write(json, *entry.item);
  } else if (entry.line.kind == DifferenceKind::kMoved) {
    WriteMoved(json, *entry.change);
  } else {
    WriteChanged(json, *entry.change);
  }
  return json.Take();
}

void DiffJsonParts::Add(DifferenceKind kind, const std::string& item) {
  std::string& list = fLists[static_cast<std::size_t>(kind)];
  if (!list.empty()) list += ',';
  list += item;
}

std::string DiffJsonParts::Document() const {
  std::string text = fmt::format(R"({{"schema":"{}","old":{},"new":{})", kSchema, fBefore, fAfter);
  for (const DifferenceKind kind :
       {DifferenceKind::kAdded, DifferenceKind::kRemoved, DifferenceKind::kMoved, DifferenceKind::kChanged}) {
    text += fmt::format(R"(,"{}":[{}])", NameOf(kind), fLists[static_cast<std::size_t>(kind)]);
  }
  return text + "}";
}

}  // namespace cli
