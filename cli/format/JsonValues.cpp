// JSON values of instances; see the header.
#include "cli/format/JsonValues.h"

#include "standin/ValueView.h"

using nlohmann::ordered_json;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace cli {

namespace {

ordered_json ToJson(const NKESTA20::TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      return standin::NumberOf(value);
    case Type::kStringArray:
      return standin::StringsOf(value);
    default:
      return standin::TextOf(value);
  }
}

}  // namespace

ordered_json PropertiesAsJson(const InstanceView& instance) {
  ordered_json properties = ordered_json::object();
  for (const auto& [name, property] : instance.Properties()) properties[name] = ToJson(property->Value());
  return properties;
}

}  // namespace cli
