// A table for people, for the formats that print rows and columns. It fits a terminal's width, draws the
// lines of a tree, and escapes what a terminal would act on, whatever a cell holds.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/text/ColumnWidths.h"
#include "cli/text/Surface.h"

namespace cli {

/// What the colour of an item means.
enum class Tone { kPlain, kHeading, kHub, kFree };

/// `text`, which must be escaped for a terminal, in the colour of `tone`.
std::string Toned(const std::string& text, Tone tone);

/// Off a terminal each column is as wide as its widest cell. On a terminal that is too narrow for this,
/// columns become narrower or are left out as in FitColumns. A cell that is cut ends in `…`, or in `~`
/// without UTF-8.
class TextTable {
 public:
  /// The largest width of a cell anywhere, so that one long text cannot pad every row without limit. A string
  /// of a USB device has at most 126 characters.
  static constexpr std::size_t kWidestCell = 256;

  /// The number of a row, from 0.
  using Row = std::size_t;

  enum class Kind {
    kLeft,
    kRight,
    /// Aligned to the left, after lines that lead from each row to its children. At most one column.
    kTree
  };
  struct Column {
    std::string title;
    Kind kind;
    Importance importance;
    /// Left out rather than cut to less than this.
    std::size_t minimum;
  };

  explicit TextTable(const Surface& surface) : fSurface(surface) {}

  /// To be called before there are rows.
  void AddColumn(Column column);
  /// Adds a row after the others, empty and without a tone. In a tree it belongs to the last row of the depth
  /// before its own; so `depth` must be at most one more than that of the last row, and 0 for the first.
  Row AddRow(std::size_t depth = 0);
  /// Any bytes may stand in `text`.
  void SetCell(Row row, std::size_t column, const std::string& text);
  /// The same with further lines below the first; needs at least one line. The further lines may reach over
  /// the columns to the right where this one is too narrow for them. At most one column has such cells.
  void SetLines(Row row, std::size_t column, const std::vector<std::string>& lines);
  /// Colours all cells of the row that hold something, if there are to be colours. The lines of a tree stay
  /// as they are.
  void SetTone(Row row, Tone tone);

  /// The table as text, without blanks at the end of any line.
  std::string Print() const;

 private:
  class Branches;
  class Printer;
  struct RowData {
    std::size_t depth;
    Tone tone;
    std::vector<std::string> furtherLines;
  };

  /// `text` escaped for a terminal, in at most kWidestCell columns.
  std::string Shown(const std::string& text) const;
  /// The mark at the end of a cut cell.
  const char* Mark() const;

  Surface fSurface;
  std::vector<Column> fColumns;
  std::vector<RowData> fRows;
  /// Those of all rows, row by row.
  std::vector<std::string> fCells;
  /// The column that further lines belong to.
  std::size_t fLinesColumn = 0;
};

}  // namespace cli
