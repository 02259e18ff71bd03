#include "cli/format/CsvFormat.h"

#include <string_view>

#include "cli/format/DeviceColumns.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/Sockets.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

bool LooksLikeFormula(std::string_view text) {
  constexpr std::string_view kFirst = "=+-@\t\r";
  return !text.empty() && kFirst.find(text.front()) != std::string_view::npos;
}

std::string Quoted(const std::string& text) {
  if (text.find_first_of("\",") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string Cell(const std::string& text) {
  return Quoted((LooksLikeFormula(text) ? "'" : "") + EscapeForDocument(text));
}

template <typename TextOf>
std::string Line(const TextOf& textOf) {
  std::string line;
  for (const DeviceColumn& column : DeviceColumns()) line += Cell(textOf(column)) + ',';
  line.pop_back();
  return line + "\r\n";
}

}  // namespace

std::string RenderCsv(const Inventory& inventory, const RenderOptions& options) {
  const Sockets sockets(inventory);
  std::string text = Line([](const DeviceColumn& column) { return column.name; });
  for (const SocketNode* const node : DeviceRows(sockets, options)) {
    text += Line([&](const DeviceColumn& column) { return column.text(sockets, *node); });
  }
  return text;
}

}  // namespace cli
