// Items as JSON values, for the formats that are made of JSON.
#pragma once

#include "cli/model/Item.h"

namespace cli {

class JsonWriter;

/// The value: numbers as numbers, lists as lists, references as object path text.
void WriteValue(JsonWriter& json, const Value& value);

/// An object of the properties that the item has, ascending by name.
void WriteProperties(JsonWriter& json, const Item& item);

}  // namespace cli
