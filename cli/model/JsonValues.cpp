#include "cli/model/JsonValues.h"

#include "cli/text/JsonWriter.h"

namespace cli {

namespace {

struct ValueWriter {
  JsonWriter& json;

  void operator()(std::monostate) const { json.Null(); }
  void operator()(std::uint64_t number) const { json.Number(number); }
  void operator()(const std::string& text) const { json.String(text); }
  void operator()(const Reference& reference) const { json.String(reference.path); }
  void operator()(const std::vector<std::string>& texts) const {
    json.BeginArray();
    for (const std::string& text : texts) json.String(text);
    json.EndArray();
  }
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

}  // namespace cli
