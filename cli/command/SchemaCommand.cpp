#include "cli/command/SchemaCommand.h"

#include "cli/format/MofFormat.h"
#include "cli/model/JsonValues.h"
#include "cli/model/Kinds.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/JsonWriter.h"
#include "cli/text/Output.h"
#include "schema/CimTypes.h"
#include "schema/ClassSchema.h"

using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

enum class Detail { kPublished, kWithOptional };

void WriteProperty(JsonWriter& json, const schema::PropertySchema& property, Detail detail) {
  json.Key(property.name);
  json.BeginObject();
  json.Key("type");
  json.String(schema::CimTypeName(property.type));
  json.Key("isArray");
  json.Bool(property.type == Type::kStringArray);
  json.Key("isKey");
  json.Bool(property.isKey);
  if (detail == Detail::kWithOptional) {
    json.Key("isOptional");
    json.Bool(property.isOptional);
  }
  if (property.type == Type::kReference) {
    json.Key("class");
    json.String(property.referenceClass);
  }
  json.EndObject();
}

void WriteClasses(JsonWriter& json, Detail detail) {
  json.BeginObject();
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    json.Key(schema.name);
    json.BeginObject();
    json.Key("kind");
    json.String(schema.kind == schema::ClassSchema::Kind::kEntity ? "entity" : "association");
    json.Key("properties");
    json.BeginObject();
    for (const schema::PropertySchema& property : schema.properties) WriteProperty(json, property, detail);
    json.EndObject();
    json.EndObject();
  }
  json.EndObject();
}

}  // namespace

int RunSchema(const SchemaOptions& options) {
  WriteOutput(options.output, options.format == "json" ? RenderJsonSchema() : RenderMofSchema());
  return kPrinted;
}

std::string RenderJsonSchema() {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("schema");
  json.String("usbinfo.classes/1");
  json.Key("namespace");
  json.String("root/cimv2");
  json.Key("classes");
  WriteClasses(json, Detail::kPublished);
  json.EndObject();
  return json.Take() + "\n";
}

std::string RenderClassTable() {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  json.Key("classes");
  WriteClasses(json, Detail::kWithOptional);
  WriteMember(json, "kinds", AllKinds());
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
