#include "tests/fuzz/JsonReader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "standin/ValueView.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using nlohmann::ordered_json;
using Type = TCIMValue::TCIMType;

namespace usbinfo_test {

namespace {

std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return '"' + quoted + '"';
}

/// A path as text; an association's keys are paths themselves.
std::string PathText(const TCIMReference& path) {
  std::string text = standin::ClassNameOf(path);
  char separator = '.';
  for (const auto& [name, value] : standin::KeysOf(path)) {
    const bool isPath = standin::TypeOf(value) == Type::kReference;
    text += separator + name + "=" +
            Quoted(isPath ? PathText(standin::ReferenceOf(value)) : standin::StringOf(value));
    separator = ',';
  }
  return text;
}

void CheckText(const ordered_json& found, const std::string& expected) {
  Require(found.is_string(), "a text is a JSON string");
  RequireEqual(found.get_ref<const std::string&>(), ReplaceBrokenUtf8(expected),
               "a string of the JSON document");
}

void CheckValue(const ordered_json& found, const TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case Type::kString:
      return CheckText(found, standin::StringOf(value));
    case Type::kReference:
      return CheckText(found, PathText(standin::ReferenceOf(value)));
    case Type::kStringArray:
      Require(found == ordered_json(standin::StringsOf(value)), "an array of the JSON document");
      break;
    default:
      Require(found.is_number_unsigned() && found.get<std::uint64_t>() == standin::NumberOf(value),
              "a number of the JSON document");
  }
}

void CheckInstance(const ordered_json& found, const cli::InstanceView& instance) {
  Require(found.is_object(), "an instance is a JSON object");
  RequireCount(found.size(), instance.Properties().size(), "properties of a JSON object");
  auto property = found.begin();
  for (const auto& [name, expected] : instance.Properties()) {
    RequireEqual(property.key(), name, "a property of the JSON document");
    CheckValue(property.value(), expected);
    ++property;
  }
}

void CheckClass(const ordered_json& found, const cli::ClassView& view) {
  Require(found.is_array(), "a class is a JSON array");
  RequireCount(found.size(), view.instances.size(), "instances of a class of the JSON document");
  for (std::size_t index = 0; index < found.size(); ++index) {
    CheckInstance(found[index], view.instances[index]);
  }
}

/// A document that any program can take: ASCII, without control characters but newlines, of which one ends
/// it.
void CheckPlainText(const std::string& document) {
  const bool isPlain = std::all_of(document.begin(), document.end(),
                                   [](char c) { return c == '\n' || (c >= ' ' && c < '\x7F'); });
  Require(isPlain, "the JSON document is ASCII without control characters");
  Require(!document.empty() && document.back() == '\n', "the JSON document ends with a newline");
}

void CheckLine(const std::string& line, const std::string& system, const std::string& className,
               const cli::InstanceView& instance) {
  const ordered_json object = ordered_json::parse(line);
  RequireCount(object.size(), 4, "members of a JSON line");
  RequireEqual(object.at("host"), ReplaceBrokenUtf8(system), "the host of a JSON line");
  RequireEqual(object.at("class"), className, "the class of a JSON line");
  CheckText(object.at("path"), PathText(instance.Path()));
  CheckInstance(object.at("properties"), instance);
}

}  // namespace

void CheckJsonLines(const std::string& document, const cli::Inventory& inventory) {
  if (!document.empty()) CheckPlainText(document);
  std::istringstream lines(document);
  std::string line;
  for (const cli::ClassView& view : inventory.Classes()) {
    for (const cli::InstanceView& instance : view.instances) {
      Require(static_cast<bool>(std::getline(lines, line)), "a JSON line for each instance");
      CheckLine(line, inventory.SystemName(), view.schema.name, instance);
    }
  }
  Require(!std::getline(lines, line), "no JSON line without an instance");
}

void CheckJson(const std::string& document, const cli::Inventory& inventory) {
  CheckPlainText(document);
  const ordered_json root = ordered_json::parse(document);
  RequireCount(root.size(), 3, "members of the JSON document");
  RequireEqual(root.at("schema"), "usbinfo.inventory/1", "the schema of the JSON document");
  RequireEqual(root.at("system").at("name"), ReplaceBrokenUtf8(inventory.SystemName()), "the system's name");
  const ordered_json& classes = root.at("classes");
  RequireCount(classes.size(), inventory.Classes().size(), "classes of the JSON document");
  auto found = classes.begin();
  for (const cli::ClassView& view : inventory.Classes()) {
    RequireEqual(found.key(), view.schema.name, "a class of the JSON document");
    CheckClass(found.value(), view);
    ++found;
  }
}

}  // namespace usbinfo_test
