#include "cli/format/JsonLinesFormat.h"

#include "cli/model/Inventory.h"
#include "cli/model/JsonValues.h"
#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

std::string LineOf(const Inventory& inventory, const Item& item) {
  JsonWriter json(JsonWriter::Layout::kOneLine);
  json.BeginObject();
  json.Key("host");
  json.String(inventory.SystemName());
  json.Key("class");
  json.String(item.Schema().name);
  json.Key("path");
  json.String(item.Path());
  json.Key("properties");
  WriteProperties(json, item);
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace

std::string RenderJsonLines(const Inventory& inventory, const RenderOptions&) {
  std::string text;
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    for (const Item& item : ofClass.items) text += LineOf(inventory, item);
  }
  return text;
}

}  // namespace cli
