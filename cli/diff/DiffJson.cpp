// The difference as a JSON document; see the header.
#include "cli/diff/DiffJson.h"

#include "cli/diff/DiffText.h"

using nlohmann::ordered_json;

namespace cli {

namespace {

/// Null for a text that there is not.
ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? ordered_json() : ordered_json(text);
}

ordered_json ToJson(const Place& place) {
  ordered_json object;
  object["text"] = DescribePlace(place);
  object["bus"] = place.hasBus ? ordered_json(place.bus) : ordered_json();
  object["identifier"] = place.hasBus ? ordered_json() : ordered_json(place.identifier);
  object["ports"] = place.ports;
  return object;
}

ordered_json ToJson(const Thing& thing) {
  ordered_json object;
  object["class"] = ClassOf(thing.item->kind);
  object["id"] = TextOrNull(IdOf(*thing.item));
  object["name"] = TextOrNull(ProductOf(*thing.item));
  object["serial"] = TextOrNull(SerialOf(*thing.item));
  object["place"] = ToJson(thing.place);
  object["deviceId"] = thing.item->Text("DeviceID");
  object["ports"] = thing.item->kind == ItemKind::kHub ? ordered_json(thing.ports) : ordered_json();
  return object;
}

ordered_json ToJson(const ThingChange& change) {
  ordered_json object;
  object["old"] = ToJson(change.before);
  object["new"] = ToJson(change.after);
  object["properties"] = ordered_json::array();
  for (const PropertyChange& property : change.properties) {
    ordered_json entry;
    entry["name"] = property.name;
    entry["from"] = property.before;
    entry["to"] = property.after;
    object["properties"].push_back(std::move(entry));
  }
  return object;
}

template <typename Entry>
ordered_json ToJson(const std::vector<Entry>& entries) {
  ordered_json list = ordered_json::array();
  for (const Entry& entry : entries) list.push_back(ToJson(entry));
  return list;
}

}  // namespace

std::string RenderDiffJson(const InventoryDifference& difference) {
  constexpr int kIndent = 2;
  ordered_json document;
  document["schema"] = "usbinfo.diff/1";
  document["old"]["system"] = difference.oldSystem;
  document["new"]["system"] = difference.newSystem;
  document["added"] = ToJson(difference.added);
  document["removed"] = ToJson(difference.removed);
  document["moved"] = ToJson(difference.moved);
  document["changed"] = ToJson(difference.changed);
  return document.dump(kIndent, ' ', true, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace cli
