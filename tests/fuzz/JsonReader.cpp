#include "tests/fuzz/JsonReader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/ReadPath.h"
#include "tests/fuzz/Utf8.h"

using nlohmann::ordered_json;

namespace usbinfo_test {

namespace {

void CheckJsonText(const ordered_json& found, const std::string& expected) {
  Require(found.is_string(), "a text is a JSON string");
  RequireEqual(found.get_ref<const std::string&>(), ReplaceBrokenUtf8(expected),
               "a string of the JSON document");
}

struct JsonValueCheck {
  const ordered_json& found;

  void operator()(std::monostate) const {
    throw BrokenInvariant("the JSON document has a property too many");
  }
  void operator()(std::uint64_t number) const {
    Require(found.is_number_unsigned() && found.get<std::uint64_t>() == number,
            "a number of the JSON document");
  }
  void operator()(const std::string& text) const { CheckJsonText(found, text); }
  void operator()(const cli::Reference& reference) const { CheckJsonText(found, reference.path); }
  void operator()(const std::vector<std::string>& texts) const {
    Require(found == ordered_json(texts), "an array of the JSON document");
  }
};

void CheckJsonItem(const ordered_json& found, const cli::Item& item) {
  Require(found.is_object(), "an instance is a JSON object");
  auto property = found.begin();
  for (std::size_t index = 0; index < item.Schema().properties.size(); ++index) {
    if (item.At(index).index() == 0) continue;
    Require(property != found.end(), "a JSON object has all properties");
    RequireEqual(property.key(), item.Schema().properties[index].name, "a property of the JSON document");
    std::visit(JsonValueCheck{property.value()}, item.At(index));
    ++property;
  }
  Require(property == found.end(), "a JSON object has no property too many");
}

void CheckClass(const ordered_json& found, const cli::ItemsOfClass& ofClass) {
  Require(found.is_array(), "a class is a JSON array");
  RequireCount(found.size(), ofClass.items.size(), "instances of a class of the JSON document");
  for (std::size_t index = 0; index < found.size(); ++index)
    CheckJsonItem(found[index], ofClass.items[index]);
}

/// A document that any program can take: ASCII, without control characters but newlines, of which one ends
/// it.
void CheckPlainText(const std::string& document) {
  const bool isPlain = std::all_of(document.begin(), document.end(),
                                   [](char c) { return c == '\n' || (c >= ' ' && c < '\x7F'); });
  Require(isPlain, "the JSON document is ASCII without control characters");
  Require(!document.empty() && document.back() == '\n', "the JSON document ends with a newline");
}

void CheckLine(const std::string& line, const std::string& system, const cli::Item& item) {
  const ordered_json object = ordered_json::parse(line);
  RequireCount(object.size(), 4, "members of a JSON line");
  RequireEqual(object.at("host"), ReplaceBrokenUtf8(system), "the host of a JSON line");
  RequireEqual(object.at("class"), item.Schema().name, "the class of a JSON line");
  CheckJsonText(object.at("path"), PathTextOf(item));
  CheckJsonItem(object.at("properties"), item);
}

}  // namespace

void CheckJsonLines(const std::string& document, const cli::Inventory& inventory) {
  if (!document.empty()) CheckPlainText(document);
  std::istringstream lines(document);
  std::string line;
  for (const cli::ItemsOfClass& ofClass : inventory.Classes()) {
    for (const cli::Item& item : ofClass.items) {
      Require(static_cast<bool>(std::getline(lines, line)), "a JSON line for each instance");
      CheckLine(line, inventory.SystemName(), item);
    }
  }
  Require(!std::getline(lines, line), "no JSON line without an instance");
}

void CheckJson(const std::string& document, const cli::Inventory& inventory) {
  CheckPlainText(document);
  const ordered_json root = ordered_json::parse(document);
  RequireCount(root.size(), 5, "members of the JSON document");
  RequireEqual(root.at("schema"), "usbinfo.inventory/2", "the schema of the JSON document");
  RequireEqual(root.at("system").at("name"), ReplaceBrokenUtf8(inventory.SystemName()), "the system's name");
  const ordered_json& classes = root.at("classes");
  RequireCount(classes.size(), inventory.Classes().size(), "classes of the JSON document");
  auto found = classes.begin();
  for (const cli::ItemsOfClass& ofClass : inventory.Classes()) {
    RequireEqual(found.key(), ofClass.schema->name, "a class of the JSON document");
    CheckClass(found.value(), ofClass);
    ++found;
  }
}

}  // namespace usbinfo_test
