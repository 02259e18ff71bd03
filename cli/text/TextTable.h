// A table for people, laid out by libsmartcols: what the formats that print rows and columns share. It fits a
// terminal's width, draws with ASCII where the locale has no UTF-8, and spells what a terminal would act on,
// whatever stands in a cell.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"

struct libscols_line;
struct libscols_table;

namespace cli {

/// What a colour says of a thing.
enum class Tone { kPlain, kHeading, kHub, kFree };

/// `text`, which must be fit for a terminal, in the colour of `tone`.
std::string Toned(const std::string& text, Tone tone);

class TextTable {
 public:
  /// Belongs to the table; null is no row.
  using Row = libscols_line*;

  enum class Kind {
    kText,
    /// Cut where the terminal is too narrow.
    kCut,
    kRight,
    /// The rows hang on each other and show it here.
    kTree,
    /// A cell may have several lines; all but the last one are cut.
    kLines
  };
  struct Column {
    std::string title;
    Kind kind;
    /// In characters, or below 1 as a share of the terminal's width, to be kept where there is room for it.
    double width;
  };

  explicit TextTable(const RenderOptions& options);

  /// False on a terminal of less than the usual 80 characters, where what others call a thing gives way to
  /// what it calls itself.
  bool HasRoomForNames() const;
  /// To be called before there are rows.
  void AddColumn(const Column& column);
  /// A new row behind the others, in a tree behind those of the same parent.
  Row AddRow(Row parent = nullptr);
  /// Any bytes may stand in `text`.
  void SetCell(Row row, std::size_t column, const std::string& text);
  /// For a column of that kind; needs at least one line. A newline within a line becomes U+FFFD.
  void SetLines(Row row, std::size_t column, const std::vector<std::string>& lines);
  /// Colours all cells of the row that hold something by now, if there are to be colours. The lines of a tree
  /// stay as they are.
  void SetTone(Row row, Tone tone);

  /// The table as text, without the blanks that pad a row's empty cells.
  std::string Print() const;

 private:
  struct Deleter {
    void operator()(libscols_table* table) const;
  };

  std::unique_ptr<libscols_table, Deleter> fTable;
  bool fIsForTerminal;
};

}  // namespace cli
