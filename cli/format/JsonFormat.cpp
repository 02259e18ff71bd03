#include "cli/format/JsonFormat.h"

#include "cli/format/RenderOptions.h"
#include "cli/model/Inventory.h"
#include "cli/model/JsonValues.h"
#include "cli/model/KernelJson.h"
#include "cli/model/OriginJson.h"

namespace cli {

namespace {

void WriteSystem(JsonWriter& json, const Inventory& inventory) {
  json.Key("system");
  json.BeginObject();
  WriteMember(json, "name", inventory.SystemName());
  WriteMember(json, "creationClassName", std::string(schema::kSystemClass));
  json.EndObject();
}

void WriteClasses(JsonWriter& json, const Inventory& inventory) {
  json.Key("classes");
  json.BeginObject();
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    WriteList(json, ofClass.schema->name, ofClass.items,
              [&](const Item& item) { WriteProperties(json, item); });
  }
  json.EndObject();
}

}  // namespace

std::string RenderJson(const Inventory& inventory, const RenderOptions& options) {
  JsonWriter json(options.isCompact ? JsonWriter::Layout::kOneLine : JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("schema");
  json.String("usbinfo.inventory/2");
  WriteSystem(json, inventory);
  WriteOptional(json, "origin", inventory.GetOrigin(),
                [&](const Origin& origin) { WriteOrigin(json, origin); });
  WriteClasses(json, inventory);
  WriteOptional(json, "kernel", inventory.Kernel(),
                [&](const KernelFacts& facts) { WriteKernelFacts(json, facts); });
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
