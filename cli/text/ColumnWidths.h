// Fits the columns of a table into a width that is too small for them: some become narrower, others are left
// out.
#pragma once

#include <cstddef>
#include <vector>

namespace cli {

/// How important a column is. The least important are left out first, of two that are equally important the
/// right one.
enum class Importance {
  kMinor,
  kUseful,
  kMain,
  /// Identifies the row: it is cut only when no column of another importance is left.
  kIdentifier
};

/// What a column needs, in columns of the terminal.
struct ColumnNeed {
  /// The width of its widest cell, 1 or more.
  std::size_t widest;
  /// The column is left out rather than cut to less than this. It may be more than `widest`.
  std::size_t minimum;
  Importance importance;
};

/// A width for each of `needs`, 0 for a column that is left out, so that the columns and a blank between any
/// two of them take at most `room`, which must be 1 or more. At least one column is left, if there is any.
std::vector<std::size_t> FitColumns(const std::vector<ColumnNeed>& needs, std::size_t room);

}  // namespace cli
