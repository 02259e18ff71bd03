#include "tests/fuzz/ReadPath.h"

#include "tests/fuzz/BrokenInvariant.h"

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

/// What stands between the quotes, the first of which is at `at`; goes past the second.
std::string TakeQuoted(const std::string& text, std::size_t& at) {
  Require(text.compare(at, 1, "\"") == 0, "a value of a path is quoted");
  std::string value;
  for (++at; at < text.size() && text[at] != '"'; ++at) {
    if (text[at] == '\\') ++at;
    if (at < text.size()) value += text[at];
  }
  Require(at < text.size(), "a value of a path ends");
  ++at;
  return value;
}

}  // namespace

ReadPath ParsePath(const std::string& text) {
  std::size_t at = text.find('.');
  Require(at != std::string::npos, "a path has a class and keys");
  ReadPath path{text.substr(0, at), {}};
  while (at < text.size()) {
    Require(text[at] == (path.keys.empty() ? '.' : ','), "the keys of a path are separated");
    const std::size_t equals = text.find('=', at);
    Require(equals != std::string::npos, "a key of a path has a value");
    const std::string name = text.substr(at + 1, equals - at - 1);
    at = equals + 1;
    path.keys.emplace_back(name, TakeQuoted(text, at));
  }
  return path;
}

std::string PathTextOf(const cli::Item& item) {
  std::string text = item.Schema().name;
  char separator = '.';
  for (const schema::PropertySchema& property : item.Schema().properties) {
    if (!property.isKey) continue;
    text += separator + property.name + "=" + Quoted(item.String(property.id));
    separator = ',';
  }
  return text;
}

}  // namespace usbinfo_test
