#include "cli/model/JsonValues.h"

namespace cli {

namespace {

struct ValueWriter {
  JsonWriter& json;

  void operator()(std::monostate) const { json.Null(); }
  void operator()(std::uint64_t number) const { json.Number(number); }
  void operator()(const std::string& text) const { json.String(text); }
  void operator()(const Reference& reference) const { json.String(reference.path); }
  void operator()(const std::vector<std::string>& texts) const { WriteTexts(json, texts); }
};

}  // namespace

void WriteValue(JsonWriter& json, const Value& value) {
  std::visit(ValueWriter{json}, value);
}

void WriteProperties(JsonWriter& json, const Item& item) {
  json.BeginObject();
  for (const schema::PropertySchema& property : item.Schema().properties) {
    if (!item.Has(property.id)) continue;
    json.Key(property.name);
    WriteValue(json, item.Get(property.id));
  }
  json.EndObject();
}

void WriteTexts(JsonWriter& json, const std::vector<std::string>& texts) {
  json.BeginArray();
  for (const std::string& text : texts) json.String(text);
  json.EndArray();
}

void WriteMember(JsonWriter& json, std::string_view name, const std::string& text) {
  json.Key(name);
  json.String(text);
}

void WriteMember(JsonWriter& json, std::string_view name, const std::optional<std::string>& text) {
  WriteOptional(json, name, text, [&](const std::string& known) { json.String(known); });
}

void WriteMember(JsonWriter& json, std::string_view name, const std::vector<std::string>& texts) {
  json.Key(name);
  WriteTexts(json, texts);
}

void WriteMember(JsonWriter& json, std::string_view name, std::uint64_t number) {
  json.Key(name);
  json.Number(number);
}

}  // namespace cli
