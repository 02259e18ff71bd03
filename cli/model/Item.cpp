#include "cli/model/Item.h"

#include "cli/model/ObjectPath.h"

namespace cli {

const Value& Item::Get(PropertyId property) const {
  static const Value kNone;
  const std::size_t index = fSchema->IndexOf(property);
  return index == schema::ClassSchema::kNone ? kNone : fValues[index];
}

const std::string& Item::String(PropertyId property) const {
  static const std::string kEmpty;
  const Value& value = Get(property);
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  const auto* const reference = std::get_if<Reference>(&value);
  return reference == nullptr ? kEmpty : reference->path;
}

std::uint64_t Item::Number(PropertyId property) const {
  const auto* const number = std::get_if<std::uint64_t>(&Get(property));
  return number == nullptr ? 0 : *number;
}

std::string Item::Path() const {
  std::string path = fSchema->name;
  for (const schema::PropertySchema& property : fSchema->properties) {
    if (property.isKey) AppendKey(path, property.name, String(property.id));
  }
  return path;
}

}  // namespace cli
