#include "cli/diff/DiffJson.h"

#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/JsonValues.h"
#include "cli/model/KernelJson.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

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

void WriteMachine(JsonWriter& json, std::string_view key, const ComparedMachine& machine) {
  json.Key(key);
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

std::string RenderDiffJson(const InventoryDifference& difference) {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("schema");
  json.String("usbinfo.diff/2");
  WriteMachine(json, "old", difference.before);
  WriteMachine(json, "new", difference.after);
  WriteItems(json, "added", difference.added);
  WriteItems(json, "removed", difference.removed);
  WriteList(json, "moved", difference.moved, [&](const ItemChange& change) {
    json.BeginObject();
    json.Key("certain");
    json.Bool(change.isCertain);
    WriteChange(json, change);
    json.EndObject();
  });
  WriteList(json, "changed", difference.changed, [&](const ItemChange& change) {
    json.BeginObject();
    WriteChange(json, change);
    json.EndObject();
  });
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
