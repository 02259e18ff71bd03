#include "cli/policy/PolicyCheckJson.h"

#include "cli/model/DeviceText.h"
#include "cli/model/JsonValues.h"

namespace cli {

namespace {

/// Null for an empty text.
void WriteUnlessEmpty(JsonWriter& json, std::string_view name, const std::string& text) {
  WriteMember(json, name, text.empty() ? std::nullopt : std::optional(text));
}

void Write(JsonWriter& json, const CheckedInventory& checked) {
  const std::optional<Origin>& origin = checked.inventory->GetOrigin();
  const auto ofOrigin = [&](std::string_view name, const std::optional<std::string>& value) {
    WriteMember(json, name, value);
  };
  json.BeginObject();
  WriteMember(json, "system", checked.inventory->SystemName());
  ofOrigin("source", origin ? std::optional(origin->source) : std::nullopt);
  ofOrigin("collected", origin ? origin->collected : std::nullopt);
  ofOrigin("machine", origin ? origin->machine : std::nullopt);
  json.Key("suspect");
  json.Bool(origin && !origin->findings.empty());
  WriteMember(json, "refused", checked.CountRefused());
  WriteList(json, "devices", checked.devices,
            [&](const CheckedDevice& device) { WriteCheckedDevice(json, device); });
  json.EndObject();
}

}  // namespace

void WriteDevice(JsonWriter& json, const PolicyDevice& device) {
  WriteMember(json, "device", device.item->String(PropertyId::kDeviceID));
  WriteMember(json, "name", device.facts == nullptr ? std::nullopt : device.facts->name);
  WriteMember(json, "id", FormatId(*device.item));
  WriteUnlessEmpty(json, "product", ProductOf(*device.item, device.facts));
  WriteUnlessEmpty(json, "serial", SerialOf(*device.item, device.facts));
  WriteMember(json, "kinds", device.facts == nullptr ? std::vector<std::string>() : device.facts->kinds);
}

void WriteRule(JsonWriter& json, const PolicyRule* rule) {
  json.Key("rule");
  if (rule == nullptr) {
    json.Null();
    return;
  }
  json.BeginObject();
  WriteMember(json, "line", rule->line);
  WriteMember(json, "text", rule->text);
  json.EndObject();
}

void WriteCheckedDevice(JsonWriter& json, const CheckedDevice& checked) {
  json.BeginObject();
  WriteDevice(json, checked.device);
  WriteMember(json, "decision", std::string(NameOf(checked.decision.target)));
  WriteRule(json, checked.decision.rule);
  json.EndObject();
}

std::string RenderCheckJson(const Policy& policy, const std::vector<CheckedInventory>& checked) {
  JsonWriter json(JsonWriter::Layout::kIndented);
  json.BeginObject();
  WriteMember(json, "schema", std::string("usbinfo.check/1"));
  WriteMember(json, "policy", policy.name);
  WriteMember(json, "default", std::string(NameOf(policy.defaultTarget)));
  WriteList(json, "inventories", checked, [&](const CheckedInventory& inventory) { Write(json, inventory); });
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
