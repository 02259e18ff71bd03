#include "cli/model/JsonNode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/model/StrictJson.h"

using nlohmann::json;

namespace cli {

void JsonNode::Refuse(const std::string& what) const {
  throw JsonError((fPointer.empty() ? "the document" : fPointer) + ": " + what);
}

JsonNode JsonNode::Member(const std::string& name) const {
  RequireObject();
  const auto found = fValue->find(name);
  if (found == fValue->end()) throw JsonError(PointerTo(fPointer, name) + ": is missing");
  return {*found, PointerTo(fPointer, name)};
}

bool JsonNode::HasMember(const std::string& name) const {
  RequireObject();
  return fValue->contains(name);
}

std::vector<std::pair<std::string, JsonNode>> JsonNode::Members() const {
  RequireObject();
  std::vector<std::pair<std::string, JsonNode>> members;
  for (const auto& [name, value] : fValue->items()) {
    members.emplace_back(name, JsonNode(value, PointerTo(fPointer, name)));
  }
  return members;
}

std::vector<JsonNode> JsonNode::Elements() const {
  if (!fValue->is_array()) Refuse("must be a list");
  std::vector<JsonNode> elements;
  for (const json& value : *fValue) elements.push_back({value, PointerTo(fPointer, elements.size())});
  return elements;
}

bool JsonNode::IsText() const {
  return fValue->is_string();
}

std::string JsonNode::Text() const {
  if (!IsText()) Refuse("must be a text");
  return fValue->get<std::string>();
}

std::string JsonNode::OneOf(const std::vector<std::string>& choices) const {
  const auto isThis = [this](const std::string& choice) { return *fValue == choice; };
  if (std::none_of(choices.begin(), choices.end(), isThis)) {
    Refuse(fmt::format("must be one of \"{}\"", fmt::join(choices, "\", \"")));
  }
  return fValue->get<std::string>();
}

void JsonNode::Exactly(const std::string& text) const {
  if (*fValue != text) Refuse(fmt::format("must be \"{}\"", text));
}

std::uint64_t JsonNode::Number(std::uint64_t most) const {
  if (!fValue->is_number_unsigned() || fValue->get<std::uint64_t>() > most) {
    Refuse(fmt::format("must be a whole number from 0 to {}", most));
  }
  return fValue->get<std::uint64_t>();
}

double JsonNode::Decimal() const {
  if (!fValue->is_number()) Refuse("must be a number");
  return fValue->get<double>();
}

bool JsonNode::Bool() const {
  if (!fValue->is_boolean()) Refuse("must be true or false");
  return fValue->get<bool>();
}

std::vector<std::string> JsonNode::Texts() const {
  return Each(&JsonNode::Text);
}

bool JsonNode::IsNull() const {
  return fValue->is_null();
}

void JsonNode::RequireObject() const {
  if (!fValue->is_object()) Refuse("must be an object");
}

}  // namespace cli
