// The JSON export; see the header.
#include "cli/format/JsonFormat.h"

#include "cli/format/JsonValues.h"
#include "standin/Host.h"

using nlohmann::ordered_json;

namespace cli {

namespace {

ordered_json ToJson(const std::vector<InstanceView>& instances) {
  ordered_json list = ordered_json::array();
  for (const InstanceView& instance : instances) list.push_back(PropertiesAsJson(instance));
  return list;
}

}  // namespace

std::string RenderJson(const Inventory& inventory, const RenderOptions&) {
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
