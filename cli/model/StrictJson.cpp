#include "cli/model/StrictJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
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

/// Follows the library's events, keeps track of the position and the names used there, and stops reading at
/// an error.
class Watcher : public nlohmann::json_sax<json> {
 public:
  explicit Watcher(const std::string& text) : fText(text) {}

  bool null() override { return NextElement(); }
  bool boolean(bool) override { return NextElement(); }
  bool number_integer(number_integer_t) override { return NextElement(); }
  bool number_unsigned(number_unsigned_t) override { return NextElement(); }
  bool number_float(number_float_t, const string_t&) override { return NextElement(); }
  bool string(string_t&) override { return NextElement(); }
  bool binary(binary_t&) override { return NextElement(); }
  bool start_object(std::size_t) override { return Enter(false); }
  bool start_array(std::size_t) override { return Enter(true); }
  bool end_object() override { return Leave(); }
  bool end_array() override { return Leave(); }

  bool key(string_t& name) override {
    Container& object = fOpen.back();
    object.isBegun = true;
    object.name = name;
    if (!object.names.insert(name).second) throw JsonError(Pointer() + ": stands there twice");
    return true;
  }

  bool parse_error(std::size_t byte, const std::string&, const json::exception& error) override {
    if (dynamic_cast<const json::out_of_range*>(&error) != nullptr) {
      NextElement();
      throw JsonError(Pointer() + ": no number is that big");
    }
    throw JsonError(LineAndColumn(fText, byte) +
                    (byte > fText.size() ? ": the document ends too early" : ": no valid JSON"));
  }

 private:
  struct Container {
    bool isArray;
    bool isBegun = false;
    std::size_t index = 0;
    std::string name = {};
    std::set<std::string> names = {};
  };

  /// The pointer to the innermost open value.
  std::string Pointer() const {
    std::string pointer;
    for (const Container& container : fOpen) {
      if (!container.isBegun) break;
      pointer = container.isArray ? PointerTo(pointer, container.index) : PointerTo(pointer, container.name);
    }
    return pointer;
  }

  bool Enter(bool isArray) {
    NextElement();
    if (fOpen.size() == kMaxDepth) {
      throw JsonError(fmt::format("{}: nested more than {} deep", Pointer(), kMaxDepth));
    }
    fOpen.push_back({isArray});
    return true;
  }

  bool Leave() {
    fOpen.pop_back();
    return true;
  }

  bool NextElement() {
    if (fOpen.empty() || !fOpen.back().isArray) return true;
    if (fOpen.back().isBegun) ++fOpen.back().index;
    fOpen.back().isBegun = true;
    return true;
  }

  const std::string& fText;
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

json ParseStrictJson(const std::string& text) {
  // The text is parsed twice, since the library's callback during parsing takes quadratic time for long
  // lists.
  Watcher watcher(text);
  json::sax_parse(text, &watcher);
  return json::parse(text);
}

}  // namespace cli
