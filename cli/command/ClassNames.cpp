#include "cli/command/ClassNames.h"

#include "cli/option/Values.h"
#include "schema/ClassSchema.h"

namespace cli {

namespace {

const std::string kPrefix = "kaldo_usb";

/// "port" of "KALDO_USBPort" and of "Port".
std::string ShortNameOf(const std::string& name) {
  const std::string lower = ToLower(name);
  return lower.compare(0, kPrefix.size(), kPrefix) == 0 ? lower.substr(kPrefix.size()) : lower;
}

}  // namespace

std::vector<std::string> ShortClassNames() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) names.push_back(ShortNameOf(schema.name));
  return names;
}

std::string ClassOfName(const std::string& name) {
  const std::string shortName = NameOf(ShortNameOf(name), ShortClassNames());
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    if (ShortNameOf(schema.name) == shortName) return schema.name;
  }
  return name;
}

}  // namespace cli
