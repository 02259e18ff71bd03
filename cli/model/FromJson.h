// An inventory read from its JSON form, schema "usbinfo.inventory/1". The document may be truncated, edited
// or made up, so all of it is checked.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace cli {

/// True when `text` is to be read as JSON: its first byte that is not a blank opens an object.
bool LooksLikeJson(const std::string& text);

/// The inventory that `text` holds; `name` is what messages call it. Throws UserError when it is not an
/// inventory of that schema: a member is missing, unknown or repeated, or has another type or range.
Inventory FromJson(const std::string& text, const std::string& name);

}  // namespace cli
