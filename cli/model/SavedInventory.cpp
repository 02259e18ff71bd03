// Checks a JSON inventory against the classes and takes it apart; see the header. docs/usbinfo.schema.json
// says the same for other programs.
#include "cli/model/SavedInventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "cli/model/StrictJson.h"
#include "cli/text/UserError.h"
#include "schema/ClassSchema.h"
#include "standin/Host.h"
#include "standin/ValueView.h"

using nlohmann::json;
using schema::ClassSchema;
using schema::PropertySchema;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

constexpr const char* kSchema = "usbinfo.inventory/1";

/// What an instance may lack: texts that a device does not send, what only a port above it gives, and a speed
/// that is not known.
bool IsOptional(const std::string& className, const std::string& property) {
  using Entry = std::pair<std::string_view, std::string_view>;
  static constexpr Entry kOptional[] = {{"KALDO_USBController", "Description"},
                                        {"KALDO_USBHub", "Description"},
                                        {"KALDO_USBHub", "HubName"},
                                        {"KALDO_USBHub", "Manufacturer"},
                                        {"KALDO_USBHub", "PortNumber"},
                                        {"KALDO_USBHub", "SerialNumber"},
                                        {"KALDO_USBPort", "Speed"},
                                        {"KALDO_USBDevice", "Description"},
                                        {"KALDO_USBDevice", "HubName"},
                                        {"KALDO_USBDevice", "Manufacturer"},
                                        {"KALDO_USBDevice", "PortNumber"},
                                        {"KALDO_USBDevice", "SerialNumber"}};
  return std::find(std::begin(kOptional), std::end(kOptional), Entry(className, property)) !=
         std::end(kOptional);
}

[[noreturn]] void Refuse(const std::string& pointer, const std::string& what) {
  throw JsonError((pointer.empty() ? "the document" : pointer) + ": " + what);
}

void RequireObject(const json& value, const std::string& pointer) {
  if (!value.is_object()) Refuse(pointer, "must be an object");
}

void RequireArray(const json& value, const std::string& pointer) {
  if (!value.is_array()) Refuse(pointer, "must be a list");
}

void RequireText(const json& value, const std::string& pointer) {
  if (!value.is_string()) Refuse(pointer, "must be a text");
}

void RequireExactly(const json& value, const std::string& pointer, const std::string& expected) {
  if (value != expected) Refuse(pointer, fmt::format("must be \"{}\"", expected));
}

/// Refuses an object without one of the members, or with another one.
void RequireMembers(const json& object, const std::string& pointer, const std::vector<std::string>& names) {
  RequireObject(object, pointer);
  for (const std::string& name : names) {
    if (!object.contains(name)) Refuse(PointerTo(pointer, name), "is missing");
  }
  for (const auto& [name, value] : object.items()) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      Refuse(PointerTo(pointer, name), "is no member of an inventory");
    }
  }
}

std::uint64_t Largest(Type::ECIMType type) {
  switch (type) {
    case Type::kUint8:
      return std::numeric_limits<std::uint8_t>::max();
    case Type::kUint16:
      return std::numeric_limits<std::uint16_t>::max();
    default:
      return std::numeric_limits<std::uint64_t>::max();
  }
}

/// A reference leads to the class that is given, or to any entity where that is the base of all.
void RequirePath(const json& value, const std::string& pointer, const std::string& target) {
  RequireText(value, pointer);
  const auto& text = value.get_ref<const std::string&>();
  const ClassSchema* const schema = schema::FindClass(text.substr(0, text.find('.')));
  const bool isEntity = schema != nullptr && schema->kind == ClassSchema::Kind::kEntity;
  if (!isEntity || text.find('.') == std::string::npos ||
      (target != schema::kEntityBaseClass && target != schema->name)) {
    Refuse(pointer, fmt::format("must be the object path of a {}", target));
  }
}

void RequireValue(const json& value, const std::string& pointer, const PropertySchema& property) {
  switch (property.type) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      if (!value.is_number_unsigned() || value.get<std::uint64_t>() > Largest(property.type)) {
        Refuse(pointer, fmt::format("must be a whole number from 0 to {}", Largest(property.type)));
      }
      break;
    case Type::kStringArray:
      RequireArray(value, pointer);
      for (std::size_t at = 0; at < value.size(); ++at) RequireText(value[at], PointerTo(pointer, at));
      break;
    case Type::kReference:
      RequirePath(value, pointer, property.referenceClass);
      break;
    default:
      RequireText(value, pointer);
      break;
  }
}

void RequireInstance(const json& instance, const std::string& pointer, const ClassSchema& schema) {
  RequireObject(instance, pointer);
  for (const auto& [name, value] : instance.items()) {
    const PropertySchema* const property = schema.FindProperty(name);
    if (property == nullptr) Refuse(PointerTo(pointer, name), "is no property of a " + schema.name);
    RequireValue(value, PointerTo(pointer, name), *property);
  }
  for (const PropertySchema& property : schema.properties) {
    if (instance.contains(property.name) || IsOptional(schema.name, property.name)) continue;
    Refuse(PointerTo(pointer, property.name), "is missing");
  }
  if (schema.kind == ClassSchema::Kind::kAssociation) return;
  RequireExactly(instance["CreationClassName"], PointerTo(pointer, "CreationClassName"), schema.name);
}

void RequireClasses(const json& classes, const std::string& pointer) {
  std::vector<std::string> names;
  for (const ClassSchema& schema : schema::ServedClasses()) names.push_back(schema.name);
  RequireMembers(classes, pointer, names);
  for (const ClassSchema& schema : schema::ServedClasses()) {
    const std::string list = PointerTo(pointer, schema.name);
    const json& instances = classes[schema.name];
    RequireArray(instances, list);
    for (std::size_t at = 0; at < instances.size(); ++at) {
      RequireInstance(instances[at], PointerTo(list, at), schema);
    }
  }
}

/// The schema first: a document of another one is told as such, not by its first unknown member.
void RequireInventory(const json& document) {
  RequireObject(document, "");
  if (!document.contains("schema")) Refuse("/schema", "is missing");
  RequireExactly(document["schema"], "/schema", kSchema);
  RequireMembers(document, "", {"schema", "system", "classes"});
  RequireMembers(document["system"], "/system", {"name", "creationClassName"});
  RequireText(document["system"]["name"], "/system/name");
  RequireExactly(document["system"]["creationClassName"], "/system/creationClassName",
                 standin::Host::kSystemCreationClassName);
  RequireClasses(document["classes"], "/classes");
}

SavedInventory TakeApart(json&& document) {
  SavedInventory inventory;
  inventory.systemName = document["system"]["name"];
  json& classes = document["classes"];
  for (const ItemKind kind : {ItemKind::kController, ItemKind::kHub, ItemKind::kPort, ItemKind::kDevice}) {
    for (json& instance : classes[ClassOf(kind)]) inventory.items.push_back({kind, std::move(instance)});
  }
  for (const char* name : {"KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
    for (const json& link : classes[name]) inventory.links.push_back({link["Antecedent"], link["Dependent"]});
  }
  return inventory;
}

}  // namespace

std::string SavedItem::Text(const std::string& name) const {
  const auto found = properties.find(name);
  return found == properties.end() ? std::string() : found->get<std::string>();
}

std::uint64_t SavedItem::Number(const std::string& name) const {
  const auto found = properties.find(name);
  return found == properties.end() ? 0 : found->get<std::uint64_t>();
}

std::string ClassOf(ItemKind kind) {
  switch (kind) {
    case ItemKind::kController:
      return "KALDO_USBController";
    case ItemKind::kHub:
      return "KALDO_USBHub";
    case ItemKind::kPort:
      return "KALDO_USBPort";
    default:
      return "KALDO_USBDevice";
  }
}

std::string PathOf(const SavedItem& item) {
  using NKESTA20::TCIMValue;
  std::vector<std::pair<std::string, TCIMValue>> keys;
  for (const PropertySchema& property : schema::FindClass(ClassOf(item.kind))->properties) {
    if (property.isKey) keys.emplace_back(property.name, TCIMValue(item.Text(property.name)));
  }
  return standin::TextOf(standin::MakePath(ClassOf(item.kind), std::move(keys)));
}

bool LooksLikeJson(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text[first] == '{';
}

SavedInventory ReadSavedInventory(const std::string& text, const std::string& name) {
  try {
    json document = ParseStrictJson(text);
    RequireInventory(document);
    return TakeApart(std::move(document));
  } catch (const JsonError& error) {
    throw UserError(fmt::format("{} holds no inventory: {}; save it anew with usbinfo --format json", name,
                                error.what()));
  }
}

}  // namespace cli
