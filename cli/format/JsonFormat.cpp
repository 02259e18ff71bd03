#include "cli/format/JsonFormat.h"

#include "cli/model/Inventory.h"
#include "cli/model/JsonValues.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

void WriteSystem(JsonWriter& json, const Inventory& inventory) {
  json.Key("system");
  json.BeginObject();
  json.Key("name");
  json.String(inventory.SystemName());
  json.Key("creationClassName");
  json.String(schema::kSystemClass);
  json.EndObject();
}

void WriteClasses(JsonWriter& json, const Inventory& inventory) {
  json.Key("classes");
  json.BeginObject();
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    json.Key(ofClass.schema->name);
    json.BeginArray();
    for (const Item& item : ofClass.items) WriteProperties(json, item);
    json.EndArray();
  }
  json.EndObject();
}

}  // namespace

std::string RenderJson(const Inventory& inventory, const RenderOptions&) {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("schema");
  json.String("usbinfo.inventory/1");
  WriteSystem(json, inventory);
  WriteClasses(json, inventory);
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
