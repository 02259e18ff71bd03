// A value of a JSON document and its place in it, for readers that check every value. All throw JsonError
// with the place where the value is not what is asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace cli {

class JsonNode {
 public:
  /// The whole document, which must outlive this.
  explicit JsonNode(const nlohmann::json& document) : fValue(&document) {}

  /// Throws JsonError: the place and what is wrong there.
  [[noreturn]] void Refuse(const std::string& what) const;

  /// The member of an object.
  JsonNode Member(const std::string& name) const;
  /// Whether an object has a member of that name.
  bool HasMember(const std::string& name) const;
  /// All members of an object, by name.
  std::vector<std::pair<std::string, JsonNode>> Members() const;
  /// All elements of a list.
  std::vector<JsonNode> Elements() const;

  bool IsText() const;
  std::string Text() const;
  /// One of `choices`.
  std::string OneOf(const std::vector<std::string>& choices) const;
  /// That very text.
  void Exactly(const std::string& text) const;
  /// A whole number from 0 to `most`.
  std::uint64_t Number(std::uint64_t most) const;
  /// Any number.
  double Decimal() const;
  bool Bool() const;
  std::vector<std::string> Texts() const;

  /// What `read` gives for this; nothing for null.
  template <typename Read>
  auto Optional(Read read) const -> std::optional<std::invoke_result_t<Read, const JsonNode&>> {
    if (IsNull()) return std::nullopt;
    return std::invoke(read, *this);
  }
  std::optional<std::string> OptionalText() const { return Optional(&JsonNode::Text); }
  /// What `read` gives for each element of a list.
  template <typename Read>
  auto Each(Read read) const -> std::vector<std::invoke_result_t<Read, const JsonNode&>> {
    std::vector<std::invoke_result_t<Read, const JsonNode&>> all;
    for (const JsonNode& element : Elements()) all.push_back(std::invoke(read, element));
    return all;
  }

 private:
  JsonNode(const nlohmann::json& value, std::string pointer) : fValue(&value), fPointer(std::move(pointer)) {}

  bool IsNull() const;
  void RequireObject() const;

  const nlohmann::json* fValue;
  /// A JSON pointer; empty for the document.
  std::string fPointer;
};

}  // namespace cli
