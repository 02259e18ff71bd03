// What a check found, for programs, schema "usbinfo.check/1".
#pragma once

#include <string>
#include <vector>

#include "cli/policy/PolicyCheck.h"
#include "cli/text/JsonWriter.h"

namespace cli {

/// The members of an object that say which device it is: "device", "name", "id", "product", "serial",
/// "kinds".
void WriteDevice(JsonWriter& json, const PolicyDevice& device);

/// The member "rule": the rule's line and text, or null.
void WriteRule(JsonWriter& json, const PolicyRule* rule);

/// Writes a device as an object: what it is, what becomes of it and the rule that decided.
void WriteCheckedDevice(JsonWriter& json, const CheckedDevice& checked);

/// One object with all inventories and each of their devices, allowed or not, and keys in a fixed order.
/// ASCII only.
std::string RenderCheckJson(const Policy& policy, const std::vector<CheckedInventory>& checked);

}  // namespace cli
