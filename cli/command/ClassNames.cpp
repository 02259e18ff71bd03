#include "cli/command/ClassNames.h"

#include "cli/option/Values.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

const std::string kPrefix = "KALDO_USB";

std::string ShortNameOf(const schema::ClassSchema& schema) {
  return ToLower(schema.name.substr(kPrefix.size()));
}

}  // namespace

std::vector<std::string> ShortClassNames() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) names.push_back(ShortNameOf(schema));
  return names;
}

schema::ClassId ClassOfName(const std::string& name) {
  const std::string lower = ToLower(name);
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    if (lower == ShortNameOf(schema) || lower == ToLower(schema.name)) return schema.id;
  }
  throw NotAmong(name, ShortClassNames());
}

}  // namespace cli
