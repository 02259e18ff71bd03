// Tables through libsmartcols; see the header.
#include "cli/text/TextTable.h"

#include <fmt/format.h>
#include <libsmartcols/libsmartcols.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <sstream>

#include "cli/text/Text.h"

namespace cli {

namespace {

constexpr const char* kReset = "\x1B[0m";

void Check(int result) {
  if (result != 0) throw std::bad_alloc();
}

int FlagsOf(TextTable::Kind kind) {
  switch (kind) {
    case TextTable::Kind::kCut:
      return SCOLS_FL_TRUNC;
    case TextTable::Kind::kRight:
      return SCOLS_FL_RIGHT;
    case TextTable::Kind::kTree:
      return SCOLS_FL_TREE;
    case TextTable::Kind::kLines:
      return SCOLS_FL_WRAP | SCOLS_FL_TRUNC;
    default:
      return 0;
  }
}

/// Empty for no colour.
const char* SequenceOf(Tone tone) {
  switch (tone) {
    case Tone::kHeading:
      return "\x1B[1m";
    case Tone::kHub:
      return "\x1B[36m";
    case Tone::kFree:
      return "\x1B[2m";
    default:
      return "";
  }
}

/// Ends `text`, which holds nothing that is not printable, where it takes more than `width` places.
void Cut(char* text, std::size_t width) {
  std::mbstate_t state{};
  std::size_t taken = 0;
  const char* const end = text + std::strlen(text);
  for (char* at = text; at < end;) {
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, at, static_cast<std::size_t>(end - at), &state);
    if (length == 0 || length > static_cast<std::size_t>(end - at)) return;
    taken += static_cast<std::size_t>(std::max(::wcwidth(character), 0));
    if (taken > width) {
      *at = '\0';
      return;
    }
    at += length;
  }
}

/// Ends the first of the lines that `data` holds and gives those behind it, as libsmartcols asks for them.
/// The last one is left to the library, which goes on with it below.
char* NextLine(const libscols_column* column, char* data, void* /*unused*/) {
  char* const end = std::strchr(data, '\n');
  if (end == nullptr) return nullptr;
  *end = '\0';
  Cut(data, scols_column_get_width(column));
  return end + 1;
}

/// `text` as a cell takes it: what the cell would take for its own, a zero byte that would end it and
/// whatever is in `own` besides, becomes U+FFFD.
std::string FitForCell(const std::string& text, const char* own = "") {
  std::string cell;
  for (const char c : ReplaceDirectionMarks(text)) {
    // The search finds the zero byte at the end of `own`, too.
    cell += std::strchr(own, c) != nullptr ? "\xEF\xBF\xBD" : std::string(1, c);
  }
  return cell;
}

/// `line` without blanks at its end, within its last colour, too. No cell can hold an escape of its own.
std::string Trimmed(const std::string& line) {
  std::string text = line.substr(0, line.find_last_not_of(' ') + 1);
  const std::size_t reset = text.rfind(kReset);
  if (reset == std::string::npos || reset + std::strlen(kReset) != text.size()) return text;
  return text.substr(0, text.find_last_not_of(' ', reset - 1) + 1) + kReset;
}

bool IsTree(libscols_table* table, std::size_t column) {
  return scols_column_is_tree(scols_table_get_column(table, column)) == 1;
}

}  // namespace

std::string Toned(const std::string& text, Tone tone) {
  return tone == Tone::kPlain ? text : SequenceOf(tone) + text + kReset;
}

void TextTable::Deleter::operator()(libscols_table* table) const {
  scols_unref_table(table);
}

TextTable::TextTable(const RenderOptions& options)
    : fTable(scols_new_table()), fIsForTerminal(options.isStandardOutput && ::isatty(STDOUT_FILENO) == 1) {
  if (!fTable) throw std::bad_alloc();
  if (!fIsForTerminal) Check(scols_table_set_termforce(fTable.get(), SCOLS_TERMFORCE_NEVER));
  Check(scols_table_enable_colors(fTable.get(), UsesColor(options.color, options.isStandardOutput) ? 1 : 0));
}

bool TextTable::HasRoomForNames() const {
  constexpr std::size_t kUsualWidth = 80;
  return !fIsForTerminal || scols_table_get_termwidth(fTable.get()) >= kUsualWidth;
}

void TextTable::AddColumn(const Column& column) {
  libscols_column* const added =
      scols_table_new_column(fTable.get(), column.title.c_str(), column.width, FlagsOf(column.kind));
  if (added == nullptr) throw std::bad_alloc();
  if (column.kind != Kind::kLines) return;
  Check(scols_column_set_wrapfunc(added, scols_wrapnl_chunksize, NextLine, nullptr));
  Check(scols_column_set_safechars(added, "\n"));
}

TextTable::Row TextTable::AddRow(Row parent) {
  Row row = scols_table_new_line(fTable.get(), parent);
  if (row == nullptr) throw std::bad_alloc();
  return row;
}

void TextTable::SetCell(Row row, std::size_t column, const std::string& text) {
  Check(scols_line_set_data(row, column, FitForCell(text).c_str()));
}

void TextTable::SetLines(Row row, std::size_t column, const std::vector<std::string>& lines) {
  std::string cell = FitForCell(lines.front(), "\n");
  for (std::size_t line = 1; line < lines.size(); ++line) cell += "\n" + FitForCell(lines[line], "\n");
  Check(scols_line_set_data(row, column, cell.c_str()));
}

void TextTable::SetTone(Row row, Tone tone) {
  if (tone == Tone::kPlain || scols_table_colors_wanted(fTable.get()) == 0) return;
  for (std::size_t column = 0; column < scols_table_get_ncols(fTable.get()); ++column) {
    libscols_cell* const cell = scols_line_get_cell(row, column);
    const char* const text = scols_cell_get_data(cell);
    const bool isBlank = text == nullptr || text[std::strspn(text, " ")] == '\0';
    const bool hasLines = IsTree(fTable.get(), column) && scols_line_get_parent(row) != nullptr;
    if (isBlank || hasLines) continue;
    Check(scols_cell_set_color(cell, SequenceOf(tone)));
  }
}

std::string TextTable::Print() const {
  char* text = nullptr;
  Check(scols_print_table_to_string(fTable.get(), &text));
  const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
  std::string trimmed;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) trimmed += Trimmed(line) + "\n";
  return trimmed;
}

}  // namespace cli
