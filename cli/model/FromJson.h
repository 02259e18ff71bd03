// An inventory read from its JSON form, schema "usbinfo.inventory/2", or "/1", which lacks origin and kernel.
// The document may be truncated, edited or made up, so all that is read of it is checked.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace cli {

/// True when `text` is to be read as JSON: its first byte that is not a blank opens an object.
bool LooksLikeJson(const std::string& text);

/// The inventory that `text` holds; `name` is what messages call it. Throws UserError when it is not an
/// inventory of these schemas: a member is missing, repeated, or has another type or range, or an instance
/// has one that is not known; others that are not known are skipped.
Inventory FromJson(const std::string& text, const std::string& name);

}  // namespace cli
