#include "cli/diff/DiffJson.h"

#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/DeviceText.h"
#include "cli/model/JsonValues.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

/// A member that is null when the text is empty.
void WriteTextOrNull(JsonWriter& json, const char* key, const std::string& text) {
  json.Key(key);
  if (text.empty()) {
    json.Null();
  } else {
    json.String(text);
  }
}

void WritePlace(JsonWriter& json, const Place& place) {
  json.BeginObject();
  json.Key("text");
  json.String(DescribePlace(place));
  json.Key("bus");
  if (place.hasBus) {
    json.Number(place.bus);
  } else {
    json.Null();
  }
  json.Key("identifier");
  if (place.hasBus) {
    json.Null();
  } else {
    json.String(place.identifier);
  }
  json.Key("ports");
  json.BeginArray();
  for (const std::uint32_t port : place.ports) json.Number(port);
  json.EndArray();
  json.EndObject();
}

void Write(JsonWriter& json, const PlacedItem& placed) {
  const Item& item = *placed.item;
  json.BeginObject();
  json.Key("class");
  json.String(item.Schema().name);
  WriteTextOrNull(json, "id", FormatId(item));
  WriteTextOrNull(json, "name", ProductOf(item, placed.facts));
  WriteTextOrNull(json, "serial", SerialOf(item, placed.facts));
  json.Key("place");
  WritePlace(json, placed.place);
  json.Key("deviceId");
  json.String(item.String(PropertyId::kDeviceID));
  json.Key("ports");
  if (item.Class() == ClassId::kHub) {
    json.Number(placed.ports);
  } else {
    json.Null();
  }
  json.EndObject();
}

void Write(JsonWriter& json, const PropertyChange& change) {
  json.BeginObject();
  json.Key("name");
  json.String(schema::NameOf(change.property));
  json.Key("from");
  WriteValue(json, change.before);
  json.Key("to");
  WriteValue(json, change.after);
  json.EndObject();
}

void Write(JsonWriter& json, const ItemChange& change) {
  json.BeginObject();
  json.Key("old");
  Write(json, change.before);
  json.Key("new");
  Write(json, change.after);
  json.Key("properties");
  json.BeginArray();
  for (const PropertyChange& property : change.properties) Write(json, property);
  json.EndArray();
  json.EndObject();
}

void WriteSystem(JsonWriter& json, const char* key, const std::string& name) {
  json.Key(key);
  json.BeginObject();
  json.Key("system");
  json.String(name);
  json.EndObject();
}

template <typename Entry>
void WriteList(JsonWriter& json, const char* key, const std::vector<Entry>& entries) {
  json.Key(key);
  json.BeginArray();
  for (const Entry& entry : entries) Write(json, entry);
  json.EndArray();
}

}  // namespace

std::string RenderDiffJson(const InventoryDifference& difference) {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("schema");
  json.String("usbinfo.diff/1");
  WriteSystem(json, "old", difference.oldSystem);
  WriteSystem(json, "new", difference.newSystem);
  WriteList(json, "added", difference.added);
  WriteList(json, "removed", difference.removed);
  WriteList(json, "moved", difference.moved);
  WriteList(json, "changed", difference.changed);
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
