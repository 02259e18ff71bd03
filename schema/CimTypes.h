// CIM's names of the value types, for the typed exports.
#pragma once

#include <string>

#include "host/TCIMValue.h"

namespace schema {

/// "uint8", "uint16", "uint64", "string" or "reference"; for an array the type of its elements.
std::string CimTypeName(NKESTA20::TCIMValue::TCIMType::ECIMType type);

}  // namespace schema
