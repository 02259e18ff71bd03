// `usbinfo schema`; see the header.
#include "cli/SchemaCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CimTypes.h"
#include "cli/ExitStatus.h"
#include "cli/MofFormat.h"
#include "cli/OptionForms.h"
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
  AddChoice(command, "--format", options.format, "FORMAT", {"mof", "json"}, "How to print");
  AddText(command, "--output", options.output, "FILE", "Write there, whole or not at all [standard output]");
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
