// Instances as JSON values, for the formats that are made of JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/model/Inventory.h"

namespace cli {

/// An object of the instance's properties, ascending by name: numbers as numbers, arrays as arrays,
/// references as object path text. Texts are handed on as they are; the document's writer replaces what is no
/// UTF-8.
nlohmann::ordered_json PropertiesAsJson(const InstanceView& instance);

}  // namespace cli
