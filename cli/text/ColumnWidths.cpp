#include "cli/text/ColumnWidths.h"

#include <algorithm>

namespace cli {

namespace {

/// A column that is not left out.
struct Shown {
  std::size_t index;
  Importance importance;
  std::size_t width;
  /// The smallest width it may be cut to.
  std::size_t floor;
};

bool IsLessImportant(const Shown& a, const Shown& b) {
  return a.importance != b.importance ? a.importance < b.importance : a.index > b.index;
}

std::size_t TotalWidth(const std::vector<Shown>& shown) {
  std::size_t total = shown.size() - 1;
  for (const Shown& column : shown) total += column.width;
  return total;
}

/// Gives each column the width that it needs and finds its smallest width.
void Reset(std::vector<Shown>& shown, const std::vector<ColumnNeed>& needs) {
  const bool hasOthers = std::any_of(shown.begin(), shown.end(), [](const Shown& column) {
    return column.importance != Importance::kIdentifier;
  });
  for (Shown& column : shown) {
    const ColumnNeed& need = needs[column.index];
    const bool isWhole = hasOthers && column.importance == Importance::kIdentifier;
    column.width = need.widest;
    column.floor = isWhole ? need.widest : std::min(need.widest, need.minimum);
  }
  if (shown.size() == 1) shown.front().floor = 1;
}

/// Takes from the widest columns first until all fit `room`; gives whether they do.
bool Shrink(std::vector<Shown>& shown, std::size_t room) {
  const auto isWorse = [](const Shown& a, const Shown& b) {
    const std::size_t widthOfA = a.width > a.floor ? a.width : 0;
    const std::size_t widthOfB = b.width > b.floor ? b.width : 0;
    return widthOfA < widthOfB;
  };
  for (std::size_t total = TotalWidth(shown); total > room; --total) {
    Shown& widest = *std::max_element(shown.begin(), shown.end(), isWorse);
    if (widest.width <= widest.floor) return false;
    --widest.width;
  }
  return true;
}

}  // namespace

std::vector<std::size_t> FitColumns(const std::vector<ColumnNeed>& needs, std::size_t room) {
  std::vector<Shown> shown;
  for (std::size_t index = 0; index < needs.size(); ++index) {
    shown.push_back({index, needs[index].importance, 0, 0});
  }
  while (!shown.empty()) {
    Reset(shown, needs);
    if (Shrink(shown, room)) break;
    shown.erase(std::min_element(shown.begin(), shown.end(), IsLessImportant));
  }
  std::vector<std::size_t> widths(needs.size(), 0);
  for (const Shown& column : shown) widths[column.index] = column.width;
  return widths;
}

}  // namespace cli
