#include "cli/text/TextTable.h"

#include <algorithm>
#include <utility>

#include "cli/text/DisplayWidth.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

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

/// A cell of one line, where it stands.
struct Cell {
  std::string text;
  std::size_t width;
  bool isRight;
  Tone tone;
};

bool IsBlank(const Cell& cell) {
  return cell.text.find_first_not_of(' ') == std::string::npos;
}

std::string Padded(const Cell& cell) {
  const std::string padding(cell.width - std::min(cell.width, DisplayWidth(cell.text)), ' ');
  return cell.isRight ? padding + cell.text : cell.text + padding;
}

/// The cells side by side, without blanks at the end.
std::string LineOf(std::vector<Cell> cells) {
  while (!cells.empty() && IsBlank(cells.back())) cells.pop_back();
  std::string line;
  for (std::size_t column = 0; column < cells.size(); ++column) {
    const bool isLast = column + 1 == cells.size();
    std::string text = Padded(cells[column]);
    if (isLast) text.resize(text.find_last_not_of(' ') + 1);
    line += Toned(text, IsBlank(cells[column]) ? Tone::kPlain : cells[column].tone);
    if (!isLast) line += ' ';
  }
  return line + '\n';
}

}  // namespace

std::string Toned(const std::string& text, Tone tone) {
  return tone == Tone::kPlain ? text : SequenceOf(tone) + text + "\x1B[0m";
}

/// The lines of the tree. They follow from the rows' depths alone.
class TextTable::Branches {
 public:
  Branches(const std::vector<RowData>& rows, bool isUtf8)
      : fRows(rows), fStrokes(isUtf8 ? kUtf8 : kAscii), fHasSibling(rows.size()) {
    std::vector<bool> hasLaterRow;
    for (std::size_t row = rows.size(); row-- > 0;) {
      hasLaterRow.resize(rows[row].depth + 1);
      fHasSibling[row] = hasLaterRow.back();
      hasLaterRow.back() = true;
    }
  }

  /// Moves on to `row`; to be called for each row in order.
  void Enter(Row row) {
    fRow = row;
    fGoesOn.resize(fRows[row].depth);
    fGoesOn.push_back(fHasSibling[row]);
  }

  std::string BeforeLabel() const {
    if (fRows[fRow].depth == 0) return std::string();
    return Passing(fRows[fRow].depth) + (fHasSibling[fRow] ? fStrokes.branch : fStrokes.lastBranch);
  }

  std::string BesideFurtherLine() const {
    const bool hasChild = fRow + 1 < fRows.size() && fRows[fRow + 1].depth > fRows[fRow].depth;
    return Passing(fRows[fRow].depth + 1) + (hasChild ? fStrokes.down : "");
  }

 private:
  struct Strokes {
    const char* branch;
    const char* lastBranch;
    const char* down;
  };
  static constexpr Strokes kAscii = {"|-", "`-", "|"};
  static constexpr Strokes kUtf8 = {"\xE2\x94\x9C\xE2\x94\x80", "\xE2\x94\x94\xE2\x94\x80", "\xE2\x94\x82"};

  /// The lines from the levels above `depth` to later rows, at most as many as a cell can show.
  std::string Passing(std::size_t depth) const {
    std::string lines;
    for (std::size_t level = 1; level < std::min(depth, kWidestCell); ++level) {
      lines += fGoesOn[level] ? fStrokes.down : " ";
      lines += ' ';
    }
    return lines;
  }

  const std::vector<RowData>& fRows;
  const Strokes& fStrokes;
  /// For each row, whether its parent has another child after it.
  std::vector<bool> fHasSibling;
  Row fRow = 0;
  /// fHasSibling of the current row and of its ancestors, by depth.
  std::vector<bool> fGoesOn;
};

class TextTable::Printer {
 public:
  explicit Printer(const TextTable& table)
      : fTable(table), fBranches(table.fRows, table.fSurface.isUtf8), fWidths(Widths()) {}

  std::string Print() {
    std::string text = LineOf(Titles());
    for (Row row = 0; row < fTable.fRows.size(); ++row) {
      fBranches.Enter(row);
      text += LineOf(CellsOf(row));
      if (fWidths[fTable.fLinesColumn] == 0) continue;
      for (const std::string& line : fTable.fRows[row].furtherLines) text += LineOf(CellsBelow(row, line));
    }
    return text;
  }

 private:
  std::vector<std::size_t> Widths() const {
    std::vector<ColumnNeed> needs;
    for (std::size_t column = 0; column < fTable.fColumns.size(); ++column) {
      const Column& declared = fTable.fColumns[column];
      needs.push_back({WidestCellOf(column), declared.minimum, declared.importance});
    }
    const std::size_t anyWidth = needs.size() * (kWidestCell + 1);
    return FitColumns(needs, fTable.fSurface.width.value_or(anyWidth));
  }

  std::size_t WidestCellOf(std::size_t column) const {
    std::size_t widest = std::max<std::size_t>(1, DisplayWidth(fTable.fColumns[column].title));
    for (Row row = 0; row < fTable.fRows.size(); ++row) {
      const std::size_t branches = IsTree(column) ? 2 * fTable.fRows[row].depth : 0;
      widest = std::max(widest, branches + DisplayWidth(Text(row, column)));
      if (column != fTable.fLinesColumn) continue;
      for (const std::string& line : fTable.fRows[row].furtherLines) {
        widest = std::max(widest, DisplayWidth(line));
      }
    }
    return std::min(widest, kWidestCell);
  }

  std::vector<Cell> Titles() const {
    std::vector<Cell> cells;
    for (std::size_t column = 0; column < fWidths.size(); ++column) {
      AddTo(cells, column, fTable.fColumns[column].title, Tone::kPlain);
    }
    return cells;
  }

  std::vector<Cell> CellsOf(Row row) const {
    const RowData& data = fTable.fRows[row];
    std::vector<Cell> cells;
    for (std::size_t column = 0; column < fWidths.size(); ++column) {
      if (IsTree(column)) {
        AddTo(cells, column, fBranches.BeforeLabel() + Text(row, column),
              data.depth == 0 ? data.tone : Tone::kPlain);
      } else {
        AddTo(cells, column, Text(row, column), data.tone);
      }
    }
    return cells;
  }

  /// The cells of one of a row's further lines, which has the rest of the table's width.
  std::vector<Cell> CellsBelow(Row row, const std::string& line) const {
    std::vector<Cell> cells;
    for (std::size_t column = 0; column < fTable.fLinesColumn; ++column) {
      AddTo(cells, column, IsTree(column) ? fBranches.BesideFurtherLine() : std::string(), Tone::kPlain);
    }
    std::size_t room = fWidths[fTable.fLinesColumn];
    for (std::size_t column = fTable.fLinesColumn + 1; column < fWidths.size(); ++column) {
      if (fWidths[column] > 0) room += 1 + fWidths[column];
    }
    cells.push_back({CutToWidth(line, room, fTable.Mark()), room, false, fTable.fRows[row].tone});
    return cells;
  }

  /// Nothing when the column is left out.
  void AddTo(std::vector<Cell>& cells, std::size_t column, const std::string& text, Tone tone) const {
    const std::size_t width = fWidths[column];
    if (width == 0) return;
    const bool isRight = fTable.fColumns[column].kind == Kind::kRight;
    cells.push_back({CutToWidth(text, width, fTable.Mark()), width, isRight, tone});
  }

  bool IsTree(std::size_t column) const { return fTable.fColumns[column].kind == Kind::kTree; }
  const std::string& Text(Row row, std::size_t column) const {
    return fTable.fCells[row * fTable.fColumns.size() + column];
  }

  const TextTable& fTable;
  Branches fBranches;
  /// By column; 0 when it is left out.
  std::vector<std::size_t> fWidths;
};

void TextTable::AddColumn(Column column) {
  fColumns.push_back(std::move(column));
}

TextTable::Row TextTable::AddRow(std::size_t depth) {
  fRows.push_back({depth, Tone::kPlain, {}});
  fCells.resize(fCells.size() + fColumns.size());
  return fRows.size() - 1;
}

void TextTable::SetCell(Row row, std::size_t column, const std::string& text) {
  fCells[row * fColumns.size() + column] = Shown(text);
}

void TextTable::SetLines(Row row, std::size_t column, const std::vector<std::string>& lines) {
  SetCell(row, column, lines.front());
  fLinesColumn = column;
  std::vector<std::string>& further = fRows[row].furtherLines;
  for (std::size_t line = 1; line < lines.size(); ++line) further.push_back(Shown(lines[line]));
}

void TextTable::SetTone(Row row, Tone tone) {
  if (fSurface.isColored) fRows[row].tone = tone;
}

std::string TextTable::Print() const {
  return Printer(*this).Print();
}

std::string TextTable::Shown(const std::string& text) const {
  // More than a cell can show, even with combining marks. The rest need not be processed.
  constexpr std::size_t kMostBytes = 16 * kWidestCell;
  std::string shown = EscapeUnprintable(EscapeForTerminal(text.substr(0, kMostBytes)));
  if (text.size() > kMostBytes) shown += Mark();
  return CutToWidth(shown, kWidestCell, Mark());
}

const char* TextTable::Mark() const {
  return fSurface.isUtf8 ? "\xE2\x80\xA6" : "~";
}

}  // namespace cli
