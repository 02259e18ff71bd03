// The JSON Lines export; see the header.
#include "cli/format/JsonLinesFormat.h"

#include "cli/format/JsonValues.h"

using nlohmann::ordered_json;

namespace cli {

std::string RenderJsonLines(const Inventory& inventory, const RenderOptions&) {
  constexpr int kOneLine = -1;
  std::string text;
  for (const ClassView& view : inventory.Classes()) {
    for (const InstanceView& instance : view.instances) {
      ordered_json line;
      line["host"] = inventory.SystemName();
      line["class"] = view.schema.name;
      line["path"] = instance.PathText();
      line["properties"] = PropertiesAsJson(instance);
      text += line.dump(kOneLine, ' ', true, ordered_json::error_handler_t::replace) + "\n";
    }
  }
  return text;
}

}  // namespace cli
