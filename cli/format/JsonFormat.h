// The inventory as one JSON document, schema "usbinfo.inventory/2": stable key order, all six classes even if
// empty, instances in enumeration order, properties ascending by name.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// ASCII only, so that no string of a device reaches a terminal unescaped. Bytes that are not UTF-8 become
/// U+FFFD, references their object path as text.
std::string RenderJson(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
