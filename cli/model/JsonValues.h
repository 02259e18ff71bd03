// Parts of the inventory as JSON values, for the formats that are made of JSON.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/model/Item.h"
#include "cli/text/JsonWriter.h"

namespace cli {

/// The value: numbers as numbers, lists as lists, references as object path text.
void WriteValue(JsonWriter& json, const Value& value);

/// An object of the properties that the item has, ascending by name.
void WriteProperties(JsonWriter& json, const Item& item);

void WriteTexts(JsonWriter& json, const std::vector<std::string>& texts);

/// A member of an object: the name and the value; null where there is none.
void WriteMember(JsonWriter& json, std::string_view name, const std::string& text);
void WriteMember(JsonWriter& json, std::string_view name, const std::optional<std::string>& text);
void WriteMember(JsonWriter& json, std::string_view name, const std::vector<std::string>& texts);
void WriteMember(JsonWriter& json, std::string_view name, std::uint64_t number);

/// A member whose value `write` writes; null where there is none.
template <typename Type, typename Write>
void WriteOptional(JsonWriter& json, std::string_view name, const std::optional<Type>& value, Write write) {
  json.Key(name);
  if (value) {
    write(*value);
  } else {
    json.Null();
  }
}

/// A member that is a list, each of whose elements `write` writes.
template <typename Type, typename Write>
void WriteList(JsonWriter& json, std::string_view name, const std::vector<Type>& elements, Write write) {
  json.Key(name);
  json.BeginArray();
  for (const Type& element : elements) write(element);
  json.EndArray();
}

}  // namespace cli
