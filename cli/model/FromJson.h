// An inventory read from its JSON form, schema "usbinfo.inventory/1". The document may have been cut, edited
// or made up, so all of it is checked.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace cli {

/// True when `text` is to be taken for JSON: its first byte that is no blank opens an object.
bool LooksLikeJson(const std::string& text);

/// The inventory that `text` holds; `name` is what messages call it. Throws UserError when it is no inventory
/// of that schema: a member is missing, unknown, stands there twice, or has another type or range.
Inventory FromJson(const std::string& text, const std::string& name);

}  // namespace cli
