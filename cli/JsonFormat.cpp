// The JSON export; see the header.
#include "cli/JsonFormat.h"

#include <nlohmann/json.hpp>

#include "standin/Host.h"
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

ordered_json ToJson(const InstanceView& instance) {
  ordered_json properties = ordered_json::object();
  for (const auto& [name, property] : instance.Properties()) properties[name] = ToJson(property->Value());
  return properties;
}

ordered_json ToJson(const std::vector<InstanceView>& instances) {
  ordered_json list = ordered_json::array();
  for (const InstanceView& instance : instances) list.push_back(ToJson(instance));
  return list;
}

}  // namespace

std::string RenderJson(const Inventory& inventory, const OutputPlace&) {
  constexpr int kIndent = 2;
  ordered_json document;
  document["schema"] = "usbinfo.inventory/1";
  document["system"]["name"] = inventory.SystemName();
  document["system"]["creationClassName"] = standin::Host::kSystemCreationClassName;
  for (const ClassView& view : inventory.Classes()) {
    document["classes"][view.schema.name] = ToJson(view.instances);
  }
  return document.dump(kIndent, ' ', true, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace cli
