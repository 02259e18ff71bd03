#include "cli/model/StrictJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

using nlohmann::json;

namespace cli {

namespace {

/// An inventory nests six deep.
constexpr std::size_t kMaxDepth = 16;

/// The line and column of the `byte`-th byte of `text`, counted from 1.
std::string LineAndColumn(const std::string& text, std::size_t byte) {
  const std::size_t at = std::min(byte == 0 ? 0 : byte - 1, text.size());
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(at);
  const auto line = std::count(text.begin(), end, '\n') + 1;
  const std::size_t lineEnd = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
  const std::size_t column = lineEnd == std::string::npos ? at + 1 : at - lineEnd;
  return fmt::format("line {}, column {}", line, column);
}

/// Deletes what is in `value` from the bottom up, so that no destructor meets a value with children. The
/// parser limits the depth.
void Empty(json& value) {
  if (!value.is_structured()) return;
  for (json& child : value) Empty(child);
  value.clear();
}

/// Builds the document from the library's events, keeps track of the position, and stops at an error.
class Builder : public nlohmann::json_sax<json> {
 public:
  Builder(const std::string& text, json& document) : fText(text), fDocument(document) {}

  bool null() override { return Add(nullptr) != nullptr; }
  bool boolean(bool value) override { return Add(value) != nullptr; }
  bool number_integer(number_integer_t value) override { return Add(value) != nullptr; }
  bool number_unsigned(number_unsigned_t value) override { return Add(value) != nullptr; }
  bool number_float(number_float_t value, const string_t&) override { return Add(value) != nullptr; }
  bool string(string_t& value) override { return Add(std::move(value)) != nullptr; }
  /// Never called for a text.
  bool binary(binary_t&) override { return false; }
  bool start_object(std::size_t) override { return Enter(json::object()); }
  bool start_array(std::size_t) override { return Enter(json::array()); }
  bool end_object() override { return Leave(); }
  bool end_array() override { return Leave(); }

  bool key(string_t& name) override {
    Container& object = fOpen.back();
    object.isBegun = true;
    object.name = std::move(name);
    if (object.value->contains(object.name)) throw JsonError(Pointer() + ": occurs twice");
    return true;
  }

  bool parse_error(std::size_t byte, const std::string&, const json::exception& error) override {
    if (dynamic_cast<const json::out_of_range*>(&error) != nullptr) {
      NextElement();
      throw JsonError(Pointer() + ": no number is that big");
    }
    throw JsonError(LineAndColumn(fText, byte) +
                    (byte > fText.size() ? ": the document ends too early" : ": not valid JSON"));
  }

 private:
  /// An array or object whose end has not been read.
  struct Container {
    json* value;
    bool isBegun = false;
    std::size_t index = 0;
    std::string name = {};
  };

  /// The pointer to the innermost open value.
  std::string Pointer() const {
    std::string pointer;
    for (const Container& container : fOpen) {
      if (!container.isBegun) break;
      pointer = container.value->is_array() ? PointerTo(pointer, container.index)
                                            : PointerTo(pointer, container.name);
    }
    return pointer;
  }

  bool Enter(json container) {
    json* const value = Add(std::move(container));
    if (fOpen.size() == kMaxDepth) {
      throw JsonError(fmt::format("{}: nested more than {} deep", Pointer(), kMaxDepth));
    }
    fOpen.push_back({value});
    return true;
  }

  bool Leave() {
    fOpen.pop_back();
    return true;
  }

  /// Puts `value` where the position is; gives it there.
  json* Add(json value) {
    NextElement();
    if (fOpen.empty()) return &(fDocument = std::move(value));
    const Container& container = fOpen.back();
    if (!container.value->is_array()) return &((*container.value)[container.name] = std::move(value));
    container.value->push_back(std::move(value));
    return &container.value->back();
  }

  void NextElement() {
    if (fOpen.empty() || !fOpen.back().value->is_array()) return;
    if (fOpen.back().isBegun) ++fOpen.back().index;
    fOpen.back().isBegun = true;
  }

  const std::string& fText;
  json& fDocument;
  std::vector<Container> fOpen;
};

}  // namespace

std::string PointerTo(const std::string& pointer, const std::string& name) {
  std::string longer = pointer + "/";
  for (const char c : name) {
    if (c == '~') {
      longer += "~0";
    } else if (c == '/') {
      longer += "~1";
    } else if (c == '\0') {
      // A zero byte would end a message.
      longer += "\xEF\xBF\xBD";
    } else {
      longer += c;
    }
  }
  return longer;
}

std::string PointerTo(const std::string& pointer, std::size_t index) {
  return fmt::format("{}/{}", pointer, index);
}

void DeleteJson::operator()(json* document) const {
  Empty(*document);
  delete document;
}

JsonDocument ParseStrictJson(const std::string& text) {
  JsonDocument document(new json);
  Builder builder(text, *document);
  json::sax_parse(text, &builder);
  return document;
}

}  // namespace cli
