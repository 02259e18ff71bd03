#include "cli/model/FromJson.h"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "cli/model/JsonNode.h"
#include "cli/model/KernelJson.h"
#include "cli/model/ObjectPath.h"
#include "cli/model/OriginJson.h"
#include "cli/model/StrictJson.h"
#include "cli/text/UserError.h"
#include "schema/ClassSchema.h"

using schema::ClassSchema;
using schema::PropertySchema;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

constexpr std::uint64_t kVersion = 2;

std::string SchemaOf(std::uint64_t version) {
  return fmt::format("usbinfo.inventory/{}", version);
}

/// The version of a schema of inventories; nothing for another text.
std::optional<std::uint64_t> VersionOf(const std::string& schema) {
  const std::size_t slash = schema.rfind('/');
  if (slash == std::string::npos) return std::nullopt;
  std::uint64_t version = 0;
  std::from_chars(schema.data() + slash + 1, schema.data() + schema.size(), version);
  return version != 0 && schema == SchemaOf(version) ? std::optional(version) : std::nullopt;
}

/// `name` is what messages call the document.
std::uint64_t ReadVersion(const JsonNode& node, const std::string& name) {
  const std::optional<std::uint64_t> version = node.IsText() ? VersionOf(node.Text()) : std::nullopt;
  if (!version) node.Refuse(fmt::format("must be \"{}\"", SchemaOf(kVersion)));
  if (*version > kVersion) {
    throw UserError(
        fmt::format("{} was saved by a later version of usbinfo: its schema is {}, and this version reads "
                    "schemas up to {}; "
                    "update usbinfo, or save the inventory anew with this version",
                    name, SchemaOf(*version), SchemaOf(kVersion)));
  }
  return *version;
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

/// A reference to an item of the named class, or of any entity class when that is the base class.
Reference ReadReference(const JsonNode& node, const std::string& className) {
  std::string text = node.Text();
  const std::optional<ObjectPath> path = ParseObjectPath(text);
  if (!path || (className != schema::kEntityBaseClass && className != path->schema->name)) {
    node.Refuse(fmt::format("must be the object path of a {}", className));
  }
  return {std::move(text)};
}

Value ReadValue(const JsonNode& node, const PropertySchema& property) {
  switch (property.type) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      return node.Number(Largest(property.type));
    case Type::kStringArray:
      return node.Texts();
    case Type::kReference:
      return ReadReference(node, property.referenceClass);
    default:
      return node.Text();
  }
}

Item ReadItem(const JsonNode& instance, const ClassSchema& schema) {
  Item item(schema.id);
  for (const auto& [name, value] : instance.Members()) {
    const std::size_t index = schema.IndexOf(name);
    if (index == ClassSchema::kNone) value.Refuse("is not a property of a " + schema.name);
    item.SetAt(index, ReadValue(value, schema.properties[index]));
  }
  for (const PropertySchema& property : schema.properties) {
    // Refuses a property that is missing.
    if (!property.isOptional && !item.Has(property.id)) instance.Member(property.name);
  }
  if (schema.kind == ClassSchema::Kind::kEntity) instance.Member("CreationClassName").Exactly(schema.name);
  return item;
}

void ReadClasses(const JsonNode& classes, Inventory& inventory) {
  for (const auto& [name, instances] : classes.Members()) {
    if (schema::FindClass(name) == nullptr) instances.Refuse("is not a member of an inventory");
  }
  for (const ClassSchema& schema : schema::ServedClasses()) {
    for (const JsonNode& instance : classes.Member(schema.name).Elements()) {
      inventory.Add(ReadItem(instance, schema));
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

void ReadOriginAndKernel(const JsonNode& document, Inventory& inventory) {
  if (auto origin = document.Member("origin").Optional(ReadOrigin)) inventory.SetOrigin(std::move(*origin));
  if (auto facts = document.Member("kernel").Optional(ReadKernelFacts))
    inventory.SetKernel(std::move(*facts));
}

/// The schema is checked first, so that the message for a document of another schema says so.
Inventory ReadInventory(const JsonNode& document, const std::string& name) {
  const std::uint64_t version = ReadVersion(document.Member("schema"), name);
  const JsonNode system = document.Member("system");
  Inventory inventory(system.Member("name").Text());
  system.Member("creationClassName").Exactly(schema::kSystemClass);
  ReadClasses(document.Member("classes"), inventory);
  inventory.SetKnowsConnections(HasConnections(inventory));
  if (version == kVersion) ReadOriginAndKernel(document, inventory);
  return inventory;
}

}  // namespace

bool LooksLikeJson(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text[first] == '{';
}

Inventory FromJson(const std::string& text, const std::string& name) {
  try {
    const auto document = ParseStrictJson(text);
    return ReadInventory(JsonNode(*document), name);
  } catch (const JsonError& error) {
    throw UserError(fmt::format("{} holds no inventory: {}; save it anew with usbinfo --format json", name,
                                error.what()));
  }
}

}  // namespace cli
