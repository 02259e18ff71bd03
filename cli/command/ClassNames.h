// The inventory's classes as people name them on the command line: "port" for KALDO_USBPort.
#pragma once

#include <string>
#include <vector>

#include "schema/ClassSchema.h"

namespace cli {

/// The short names of all classes, in the order of the schema: in lower case, without the common prefix.
std::vector<std::string> ShortClassNames();

/// The class of that short or full name, in upper or lower case. Throws UsageError when there is none.
schema::ClassId ClassOfName(const std::string& name);

}  // namespace cli
