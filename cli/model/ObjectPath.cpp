#include "cli/model/ObjectPath.h"

namespace cli {

namespace {

bool Skip(std::string_view& rest, std::string_view expected) {
  if (rest.substr(0, expected.size()) != expected) return false;
  rest.remove_prefix(expected.size());
  return true;
}

/// Removes a quoted value from the beginning of `rest`; nothing when there is none.
std::optional<std::string> TakeQuoted(std::string_view& rest) {
  if (!Skip(rest, "\"")) return std::nullopt;
  std::string value;
  for (std::size_t at = 0; at < rest.size(); ++at) {
    if (rest[at] == '"') {
      rest.remove_prefix(at + 1);
      return value;
    }
    if (rest[at] == '\\' && ++at == rest.size()) break;
    value += rest[at];
  }
  return std::nullopt;
}

}  // namespace

const std::string& ObjectPath::Key(schema::PropertyId property) const {
  auto value = keys.begin();
  for (const schema::PropertySchema& candidate : schema->properties) {
    if (candidate.id == property) break;
    if (candidate.isKey) ++value;
  }
  return *value;
}

void AppendKey(std::string& path, std::string_view name, std::string_view value) {
  // Keys are separated outside of quotes only, so the first key follows the class.
  path += path.find('.') == std::string::npos ? '.' : ',';
  path.append(name).append("=\"");
  for (const char c : value) {
    if (c == '"' || c == '\\') path += '\\';
    path += c;
  }
  path += '"';
}

std::optional<ObjectPath> ParseObjectPath(std::string_view text) {
  ObjectPath path{schema::FindClass(text.substr(0, text.find('.'))), {}};
  if (path.schema == nullptr || path.schema->kind != schema::ClassSchema::Kind::kEntity) return std::nullopt;
  text.remove_prefix(path.schema->name.size());
  char separator = '.';
  for (const schema::PropertySchema& property : path.schema->properties) {
    if (!property.isKey) continue;
    if (!Skip(text, separator + property.name + "=")) return std::nullopt;
    std::optional<std::string> value = TakeQuoted(text);
    if (!value) return std::nullopt;
    path.keys.push_back(*std::move(value));
    separator = ',';
  }
  return text.empty() ? std::optional<ObjectPath>(std::move(path)) : std::nullopt;
}

}  // namespace cli
