// How the columns of a table share a width that is too small for all of them: which ones become narrower, and
// which ones are left out.
#pragma once

#include <cstddef>
#include <vector>

namespace cli {

/// What a column is worth to the reader of a row. Those worth least are left out first, of two that are worth
/// the same the right one.
enum class Importance {
  kMinor,
  kUseful,
  kMain,
  /// Tells rows apart: is cut only where no column of another importance is left.
  kIdentifier
};

/// What a column asks for, in columns of the terminal.
struct ColumnNeed {
  /// The width of its widest cell, 1 or more.
  std::size_t widest;
  /// Cut to less than this, the column is left out instead. It may be more than `widest`.
  std::size_t minimum;
  Importance importance;
};

/// A width for each of `needs`, 0 for a column that is left out, so that the columns and a blank between any
/// two of them take at most `room`, which must be 1 or more. At least one column is left, if there is any.
std::vector<std::size_t> FitColumns(const std::vector<ColumnNeed>& needs, std::size_t room);

}  // namespace cli
