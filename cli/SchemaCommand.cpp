// `usbinfo schema`; see the header.
#include "cli/SchemaCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CimTypes.h"
#include "cli/ExitStatus.h"
#include "cli/MofFormat.h"
#include "cli/Output.h"
#include "standin/ClassSchema.h"

using nlohmann::ordered_json;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

ordered_json ToJson(const standin::PropertySchema& property) {
  ordered_json object;
  object["type"] = CimTypeName(property.type);
  object["isArray"] = property.type == Type::kStringArray;
  object["isKey"] = property.isKey;
  if (property.type == Type::kReference) object["class"] = property.referenceClass;
  return object;
}

ordered_json ToJson(const standin::ClassSchema& schema) {
  ordered_json object;
  object["kind"] = schema.kind == standin::ClassSchema::Kind::kEntity ? "entity" : "association";
  for (const standin::PropertySchema& property : schema.properties) {
    object["properties"][property.name] = ToJson(property);
  }
  return object;
}

}  // namespace

void AddSchemaOptions(CLI::App& command, SchemaOptions& options) {
  command.add_option("--format", options.format, "How to print [mof]:\nmof, json")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"mof", "json"}).description(""));
  command.add_option("--output", options.output, "Write there, whole or not at all [standard output]")
      ->type_name("FILE");
}

int RunSchema(const SchemaOptions& options) {
  WriteOutput(options.output, options.format == "json" ? RenderJsonSchema() : RenderMofSchema());
  return kPrinted;
}

std::string RenderJsonSchema() {
  constexpr int kIndent = 2;
  ordered_json document;
  document["schema"] = "usbinfo.classes/1";
  document["namespace"] = "root/cimv2";
  for (const standin::ClassSchema& schema : standin::ServedClasses()) {
    document["classes"][schema.name] = ToJson(schema);
  }
  return document.dump(kIndent) + "\n";
}

}  // namespace cli
