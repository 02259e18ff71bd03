// One item of an inventory: a controller, hub, port or device, or a link between two of these. A plain value
// that knows its class and its properties.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/model/Value.h"
#include "schema/ClassSchema.h"

namespace cli {

using schema::ClassId;
using schema::PropertyId;

class Item {
 public:
  explicit Item(ClassId classId) : fSchema(&schema::ClassOf(classId)), fValues(fSchema->properties.size()) {}

  ClassId Class() const { return fSchema->id; }
  const schema::ClassSchema& Schema() const { return *fSchema; }

  /// The value at the index that a property has in the class's schema.
  const Value& At(std::size_t index) const { return fValues[index]; }
  void SetAt(std::size_t index, Value value) { fValues[index] = std::move(value); }

  /// The value of a property; std::monostate where the class or the item lacks it.
  const Value& Get(PropertyId property) const;
  bool Has(PropertyId property) const { return Get(property).index() != 0; }
  /// The value where it is a string, or a reference's path; empty for any other.
  const std::string& String(PropertyId property) const;
  /// The value where it is a number; 0 for any other.
  std::uint64_t Number(PropertyId property) const;
  /// The value as text, whatever its type.
  std::string Text(PropertyId property) const { return TextOf(Get(property)); }

  /// The object path, made from the keys.
  std::string Path() const;

 private:
  const schema::ClassSchema* fSchema;
  /// In the order of the class's properties.
  std::vector<Value> fValues;
};

}  // namespace cli
