// The difference of two inventories for programs, schema "usbinfo.diff/2"; docs/usbinfo-diff.schema.json
// describes its form.
#pragma once

#include <string>

namespace cli {

struct InventoryDifference;

/// One object with all lists, even empty ones, and keys in a fixed order. ASCII only.
std::string RenderDiffJson(const InventoryDifference& difference);

}  // namespace cli
