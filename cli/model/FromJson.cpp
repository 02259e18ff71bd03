#include "cli/model/FromJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "cli/model/ObjectPath.h"
#include "cli/model/StrictJson.h"
#include "cli/text/UserError.h"
#include "schema/ClassSchema.h"

using nlohmann::json;
using schema::ClassSchema;
using schema::PropertySchema;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

constexpr const char* kSchema = "usbinfo.inventory/1";

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

/// Refuses an object that lacks one of the members or has another one.
void RequireMembers(const json& object, const std::string& pointer, const std::vector<std::string>& names) {
  RequireObject(object, pointer);
  for (const std::string& name : names) {
    if (!object.contains(name)) Refuse(PointerTo(pointer, name), "is missing");
  }
  for (const auto& [name, value] : object.items()) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      Refuse(PointerTo(pointer, name), "is not a member of an inventory");
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

std::uint64_t ReadNumber(const json& value, const std::string& pointer, Type::ECIMType type) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > Largest(type)) {
    Refuse(pointer, fmt::format("must be a whole number from 0 to {}", Largest(type)));
  }
  return value.get<std::uint64_t>();
}

std::string ReadText(const json& value, const std::string& pointer) {
  RequireText(value, pointer);
  return value.get<std::string>();
}

std::vector<std::string> ReadTexts(const json& value, const std::string& pointer) {
  RequireArray(value, pointer);
  std::vector<std::string> texts;
  for (std::size_t at = 0; at < value.size(); ++at)
    texts.push_back(ReadText(value[at], PointerTo(pointer, at)));
  return texts;
}

/// A reference to an item of the named class, or of any entity class when that is the base class.
Reference ReadReference(const json& value, const std::string& pointer, const std::string& className) {
  std::string text = ReadText(value, pointer);
  const std::optional<ObjectPath> path = ParseObjectPath(text);
  if (!path || (className != schema::kEntityBaseClass && className != path->schema->name)) {
    Refuse(pointer, fmt::format("must be the object path of a {}", className));
  }
  return {std::move(text)};
}

Value ReadValue(const json& value, const std::string& pointer, const PropertySchema& property) {
  switch (property.type) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      return ReadNumber(value, pointer, property.type);
    case Type::kStringArray:
      return ReadTexts(value, pointer);
    case Type::kReference:
      return ReadReference(value, pointer, property.referenceClass);
    default:
      return ReadText(value, pointer);
  }
}

Item ReadItem(const json& instance, const std::string& pointer, const ClassSchema& schema) {
  RequireObject(instance, pointer);
  Item item(schema.id);
  for (const auto& [name, value] : instance.items()) {
    const std::size_t index = schema.IndexOf(name);
    if (index == ClassSchema::kNone)
      Refuse(PointerTo(pointer, name), "is not a property of a " + schema.name);
    item.SetAt(index, ReadValue(value, PointerTo(pointer, name), schema.properties[index]));
  }
  for (const PropertySchema& property : schema.properties) {
    if (!property.isOptional && !item.Has(property.id))
      Refuse(PointerTo(pointer, property.name), "is missing");
  }
  if (schema.kind == ClassSchema::Kind::kEntity) {
    RequireExactly(instance["CreationClassName"], PointerTo(pointer, "CreationClassName"), schema.name);
  }
  return item;
}

void ReadClasses(const json& classes, const std::string& pointer, Inventory& inventory) {
  std::vector<std::string> names;
  for (const ClassSchema& schema : schema::ServedClasses()) names.push_back(schema.name);
  RequireMembers(classes, pointer, names);
  for (const ClassSchema& schema : schema::ServedClasses()) {
    const std::string list = PointerTo(pointer, schema.name);
    const json& instances = classes[schema.name];
    RequireArray(instances, list);
    for (std::size_t at = 0; at < instances.size(); ++at) {
      inventory.Add(ReadItem(instances[at], PointerTo(list, at), schema));
    }
  }
}

/// The document does not say whether connections were requested. They were if there are some, or if the only
/// hubs are root hubs, so that there is nothing to connect.
bool HasConnections(const Inventory& inventory) {
  if (!inventory.Connections().empty()) return true;
  return inventory.Devices().empty() && !inventory.Hubs().empty() &&
         inventory.Hubs().size() == inventory.Controllers().size();
}

/// The schema is checked first, so that the message for a document of another schema says so and does not
/// name an unknown member.
Inventory ReadInventory(const json& document) {
  RequireObject(document, "");
  if (!document.contains("schema")) Refuse("/schema", "is missing");
  RequireExactly(document["schema"], "/schema", kSchema);
  RequireMembers(document, "", {"schema", "system", "classes"});
  RequireMembers(document["system"], "/system", {"name", "creationClassName"});
  Inventory inventory(ReadText(document["system"]["name"], "/system/name"));
  RequireExactly(document["system"]["creationClassName"], "/system/creationClassName", schema::kSystemClass);
  ReadClasses(document["classes"], "/classes", inventory);
  inventory.SetKnowsConnections(HasConnections(inventory));
  return inventory;
}

}  // namespace

bool LooksLikeJson(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text[first] == '{';
}

Inventory FromJson(const std::string& text, const std::string& name) {
  try {
    return ReadInventory(*ParseStrictJson(text));
  } catch (const JsonError& error) {
    throw UserError(fmt::format("{} holds no inventory: {}; save it anew with usbinfo --format json", name,
                                error.what()));
  }
}

}  // namespace cli
