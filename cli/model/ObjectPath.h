// Object paths as text, as the host writes them: `Class.Key="value",Key="value"`, keys ascending by name,
// quotes and backslashes in a value escaped by a backslash.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "schema/ClassSchema.h"

namespace cli {

/// The path of an instance of an entity class, taken apart.
struct ObjectPath {
  const schema::ClassSchema* schema;
  /// A value for each key of the class, in the order of the class's properties.
  std::vector<std::string> keys;

  /// The value of one of the keys.
  const std::string& Key(schema::PropertyId property) const;
};

/// Appends `name="value"` to a path that holds the class's name and perhaps other keys.
void AppendKey(std::string& path, std::string_view name, std::string_view value);

/// Nothing when `text` is not the path of an entity with all of its keys, in order.
std::optional<ObjectPath> ParseObjectPath(std::string_view text);

}  // namespace cli
