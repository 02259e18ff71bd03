// Reading JSON without trust; see the header. The library builds the document; a watcher of its events keeps
// account of where it is and of the names used there.
#include "cli/StrictJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <vector>

using nlohmann::json;

namespace cli {

namespace {

/// An inventory nests five deep.
constexpr std::size_t kMaxDepth = 16;

class Watcher {
 public:
  void See(json::parse_event_t event, const json& value) {
    switch (event) {
      case json::parse_event_t::object_start:
      case json::parse_event_t::array_start:
        Enter(event == json::parse_event_t::array_start);
        break;
      case json::parse_event_t::object_end:
      case json::parse_event_t::array_end:
        fOpen.pop_back();
        break;
      case json::parse_event_t::key:
        TakeName(value.get_ref<const std::string&>());
        break;
      case json::parse_event_t::value:
        NextElement();
        break;
    }
  }

  /// To what was begun last.
  std::string Pointer() const {
    std::string pointer;
    for (const Container& container : fOpen) {
      if (!container.isBegun) break;
      pointer = container.isArray ? PointerTo(pointer, container.index) : PointerTo(pointer, container.name);
    }
    return pointer;
  }

  /// To the value that was about to come: of a member, what was begun last; in a list, the next element.
  std::string PointerToNext() {
    NextElement();
    return Pointer();
  }

 private:
  struct Container {
    bool isArray;
    bool isBegun = false;
    std::size_t index = 0;
    std::string name = {};
    std::set<std::string> names = {};
  };

  void Enter(bool isArray) {
    NextElement();
    if (fOpen.size() == kMaxDepth) {
      throw JsonError(fmt::format("{}: nested more than {} deep", Pointer(), kMaxDepth));
    }
    fOpen.push_back({isArray});
  }

  void NextElement() {
    if (fOpen.empty() || !fOpen.back().isArray) return;
    if (fOpen.back().isBegun) ++fOpen.back().index;
    fOpen.back().isBegun = true;
  }

  void TakeName(const std::string& name) {
    Container& object = fOpen.back();
    object.isBegun = true;
    object.name = name;
    if (!object.names.insert(name).second) throw JsonError(Pointer() + ": stands there twice");
  }

  std::vector<Container> fOpen;
};

/// Where the `byte`-th byte of `text`, counted from 1, stands for people.
std::string LineAndColumn(const std::string& text, std::size_t byte) {
  const std::size_t at = std::min(byte == 0 ? 0 : byte - 1, text.size());
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(at);
  const auto line = std::count(text.begin(), end, '\n') + 1;
  const std::size_t lineEnd = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
  const std::size_t column = lineEnd == std::string::npos ? at + 1 : at - lineEnd;
  return fmt::format("line {}, column {}", line, column);
}

}  // namespace

std::string PointerTo(const std::string& pointer, const std::string& name) {
  std::string longer = pointer + "/";
  for (const char c : name) {
    if (c == '~') {
      longer += "~0";
    } else if (c == '/') {
      longer += "~1";
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
  Watcher watcher;
  try {
    return json::parse(text, [&watcher](int, json::parse_event_t event, const json& value) {
      watcher.See(event, value);
      return true;
    });
  } catch (const json::parse_error& error) {
    const bool isCutOff = error.byte > text.size();
    throw JsonError(LineAndColumn(text, error.byte) +
                    (isCutOff ? ": the document ends too early" : ": no valid JSON"));
  } catch (const json::out_of_range&) {
    throw JsonError(watcher.PointerToNext() + ": no number is that big");
  }
}

}  // namespace cli
