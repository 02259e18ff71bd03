// The MOF export; see the header.
#include "cli/format/MofFormat.h"

#include <fmt/format.h>

#include "cli/format/CimTypes.h"
#include "cli/text/Text.h"
#include "standin/ValueView.h"

using NKESTA20::TCIMValue;
using schema::ClassSchema;
using schema::PropertySchema;
using Type = TCIMValue::TCIMType;

namespace cli {

namespace {

constexpr const char* kQualifiers =
    "Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(Restricted);\n"
    "Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);\n"
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);\n";

std::string Quoted(const std::string& text) {
  return '"' + EscapeForMof(text) + '"';
}

std::string Declaration(const PropertySchema& property) {
  const std::string key = property.isKey ? "[Key] " : "";
  if (property.type == Type::kReference) {
    return fmt::format("  {}{} REF {};\n", key, property.referenceClass, property.name);
  }
  const char* const brackets = property.type == Type::kStringArray ? "[]" : "";
  return fmt::format("  {}{} {}{};\n", key, CimTypeName(property.type), property.name, brackets);
}

/// The class that the entities' keys come from.
std::string BaseDeclaration(const ClassSchema& entity) {
  std::string text = fmt::format("\n[Abstract]\nclass {} {{\n", schema::kEntityBaseClass);
  for (const PropertySchema& property : entity.properties) {
    if (property.isKey) text += Declaration(property);
  }
  return text + "};\n";
}

std::string Declaration(const ClassSchema& schema) {
  const bool isEntity = schema.kind == ClassSchema::Kind::kEntity;
  std::string text = isEntity ? fmt::format("\nclass {} : {} {{\n", schema.name, schema::kEntityBaseClass)
                              : fmt::format("\n[Association]\nclass {} {{\n", schema.name);
  for (const PropertySchema& property : schema.properties) {
    const bool isInherited = isEntity && property.isKey;
    if (!isInherited) text += Declaration(property);
  }
  return text + "};\n";
}

std::string ValueText(const TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      return standin::TextOf(value);
    case Type::kReference:
      return Quoted("/root/cimv2:" + standin::TextOf(value));
    case Type::kStringArray: {
      std::vector<std::string> elements;
      for (const std::string& element : standin::StringsOf(value)) elements.push_back(Quoted(element));
      return fmt::format("{{{}}}", fmt::join(elements, ", "));
    }
    default:
      return Quoted(standin::TextOf(value));
  }
}

std::string InstanceText(const std::string& className, const InstanceView& instance) {
  std::string text = fmt::format("\ninstance of {} {{\n", className);
  for (const auto& [name, property] : instance.Properties()) {
    text += fmt::format("  {} = {};\n", name, ValueText(property->Value()));
  }
  return text + "};\n";
}

}  // namespace

std::string RenderMofSchema() {
  const std::vector<ClassSchema>& classes = schema::ServedClasses();
  std::string text = kQualifiers + BaseDeclaration(classes.front());
  for (const ClassSchema& schema : classes) text += Declaration(schema);
  return text;
}

std::string RenderMof(const Inventory& inventory, const RenderOptions&) {
  std::string text = RenderMofSchema();
  for (const ClassView& view : inventory.Classes()) {
    for (const InstanceView& instance : view.instances) text += InstanceText(view.schema.name, instance);
  }
  return text;
}

}  // namespace cli
