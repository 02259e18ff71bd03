// Property name to value, ascending by name byte for byte: the properties of one instance to be made, and
// the context argument of the host's CIM operations.
#pragma once

#include <map>
#include <string>

#include "host/TCIMValue.h"

namespace NKESTA20 {

using PropertyMap = std::map<std::string, TCIMValue>;

}  // namespace NKESTA20
