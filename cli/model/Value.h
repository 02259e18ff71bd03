// The value of a property, as an inventory holds it.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace cli {

/// A reference to another item, by its object path as text.
struct Reference {
  std::string path;

  bool operator==(const Reference& other) const { return path == other.path; }
};

/// The first alternative means that the item lacks the property.
using Value = std::variant<std::monostate, std::uint64_t, std::string, std::vector<std::string>, Reference>;

/// Strings unchanged, numbers in decimal, lists as `{a, b}`, references as their object path; empty for a
/// property that an item lacks.
std::string TextOf(const Value& value);

}  // namespace cli
