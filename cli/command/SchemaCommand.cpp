#include "cli/command/SchemaCommand.h"

#include <nlohmann/json.hpp>

#include "cli/command/ExitStatus.h"
#include "cli/format/CimTypes.h"
#include "cli/format/MofFormat.h"
#include "cli/text/Output.h"
#include "schema/ClassSchema.h"

using nlohmann::ordered_json;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

ordered_json ToJson(const schema::PropertySchema& property) {
  ordered_json object;
  object["type"] = CimTypeName(property.type);
  object["isArray"] = property.type == Type::kStringArray;
  object["isKey"] = property.isKey;
  if (property.type == Type::kReference) object["class"] = property.referenceClass;
  return object;
}

ordered_json ToJson(const schema::ClassSchema& schema) {
  ordered_json object;
  object["kind"] = schema.kind == schema::ClassSchema::Kind::kEntity ? "entity" : "association";
  for (const schema::PropertySchema& property : schema.properties) {
    object["properties"][property.name] = ToJson(property);
  }
  return object;
}

}  // namespace

int RunSchema(const SchemaOptions& options) {
  WriteOutput(options.output, options.format == "json" ? RenderJsonSchema() : RenderMofSchema());
  return kPrinted;
}

std::string RenderJsonSchema() {
  constexpr int kIndent = 2;
  ordered_json document;
  document["schema"] = "usbinfo.classes/1";
  document["namespace"] = "root/cimv2";
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    document["classes"][schema.name] = ToJson(schema);
  }
  return document.dump(kIndent) + "\n";
}

}  // namespace cli
