#include "cli/format/MofFormat.h"

#include <fmt/format.h>

#include "cli/model/Inventory.h"
#include "cli/text/Text.h"
#include "schema/CimTypes.h"

using schema::ClassSchema;
using schema::PropertySchema;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

constexpr const char* kQualifiers =
    "Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(Restricted);\n"
    "Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);\n"
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);\n";

std::string MofString(const std::string& text) {
  return '"' + EscapeForMof(text) + '"';
}

std::string Declaration(const PropertySchema& property) {
  const std::string key = property.isKey ? "[Key] " : "";
  if (property.type == Type::kReference) {
    return fmt::format("  {}{} REF {};\n", key, property.referenceClass, property.name);
  }
  const char* const brackets = property.type == Type::kStringArray ? "[]" : "";
  return fmt::format("  {}{} {}{};\n", key, schema::CimTypeName(property.type), property.name, brackets);
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

struct ValueText {
  std::string operator()(std::monostate) const { return "NULL"; }
  std::string operator()(std::uint64_t number) const { return std::to_string(number); }
  std::string operator()(const std::string& text) const { return MofString(text); }
  std::string operator()(const Reference& reference) const {
    return MofString("/root/cimv2:" + reference.path);
  }
  std::string operator()(const std::vector<std::string>& texts) const {
    std::vector<std::string> elements;
    elements.reserve(texts.size());
    for (const std::string& text : texts) elements.push_back(MofString(text));
    return fmt::format("{{{}}}", fmt::join(elements, ", "));
  }
};

std::string InstanceText(const Item& item) {
  std::string text = fmt::format("\ninstance of {} {{\n", item.Schema().name);
  for (const PropertySchema& property : item.Schema().properties) {
    if (!item.Has(property.id)) continue;
    text += fmt::format("  {} = {};\n", property.name, std::visit(ValueText(), item.Get(property.id)));
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
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    for (const Item& item : ofClass.items) text += InstanceText(item);
  }
  return text;
}

}  // namespace cli
