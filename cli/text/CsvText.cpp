#include "cli/text/CsvText.h"

#include <string_view>

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

}  // namespace

std::string CsvLine(const std::vector<std::string>& cells) {
  std::string line;
  for (const std::string& cell : cells) line += Cell(cell) + ',';
  if (!line.empty()) line.pop_back();
  return line + "\r\n";
}

}  // namespace cli
