// How columns share a width: examples, and properties that hold for any columns on any width.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <vector>

#include "cli/text/ColumnWidths.h"

using cli::ColumnNeed;
using cli::FitColumns;
using cli::Importance;
using testing::ElementsAre;

namespace usbinfo_test {
namespace {

using Widths = std::vector<std::size_t>;

TEST(FitColumns, GivesEachColumnWhatItAsksForWhereThereIsRoom) {
  const std::vector<ColumnNeed> needs = {{5, 2, Importance::kMinor}, {7, 9, Importance::kMain}};
  EXPECT_THAT(FitColumns(needs, 13), ElementsAre(5, 7));
  EXPECT_THAT(FitColumns(needs, 200), ElementsAre(5, 7));
  EXPECT_THAT(FitColumns({}, 1), ElementsAre());
}

TEST(FitColumns, TakesFromTheWidestFirst) {
  const std::vector<ColumnNeed> needs = {
      {10, 2, Importance::kMain}, {30, 2, Importance::kMain}, {20, 2, Importance::kMinor}};
  EXPECT_THAT(FitColumns(needs, 52), ElementsAre(10, 20, 20));
  EXPECT_THAT(FitColumns(needs, 32), ElementsAre(10, 10, 10));
  EXPECT_THAT(FitColumns(needs, 8), ElementsAre(2, 2, 2));
}

TEST(FitColumns, LeavesTheLeastImportantOutAndWidensTheOthersAgain) {
  const std::vector<ColumnNeed> needs = {
      {10, 5, Importance::kUseful}, {10, 5, Importance::kMain}, {10, 5, Importance::kUseful}};
  EXPECT_THAT(FitColumns(needs, 17), ElementsAre(5, 5, 5));
  EXPECT_THAT(FitColumns(needs, 16), ElementsAre(7, 8, 0));
  EXPECT_THAT(FitColumns(needs, 10), ElementsAre(0, 10, 0));
}

TEST(FitColumns, CutsIdentifiersOnlyWhereNothingElseIsLeft) {
  const std::vector<ColumnNeed> needs = {
      {9, 4, Importance::kIdentifier}, {9, 1, Importance::kMain}, {20, 4, Importance::kIdentifier}};
  EXPECT_THAT(FitColumns(needs, 32), ElementsAre(9, 1, 20));
  EXPECT_THAT(FitColumns(needs, 31), ElementsAre(9, 0, 20));
  EXPECT_THAT(FitColumns(needs, 25), ElementsAre(9, 0, 15));
  EXPECT_THAT(FitColumns(needs, 9), ElementsAre(4, 0, 4));
  EXPECT_THAT(FitColumns(needs, 8), ElementsAre(8, 0, 0));
}

TEST(FitColumns, CutsTheLastColumnToWhateverThereIs) {
  EXPECT_THAT(FitColumns({{9, 9, Importance::kIdentifier}, {9, 9, Importance::kMinor}}, 1),
              ElementsAre(1, 0));
}

/// The columns that are left of `needs`, and whether any is narrower than it needs.
struct Fitted {
  Fitted(const std::vector<ColumnNeed>& needs, std::size_t room) : widths(FitColumns(needs, room)) {
    for (std::size_t column = 0; column < needs.size(); ++column) {
      if (widths[column] == 0) continue;
      ++shown;
      total += widths[column] + (shown > 1 ? 1 : 0);
      isCut |= widths[column] < needs[column].widest;
      hasOthers |= needs[column].importance != Importance::kIdentifier;
    }
  }

  Widths widths;
  std::size_t shown = 0;
  std::size_t total = 0;
  bool isCut = false;
  bool hasOthers = false;
};

/// The least that all of `needs` take together, identifiers whole.
std::size_t LeastOf(const std::vector<ColumnNeed>& needs) {
  std::size_t least = needs.size() - 1;
  for (const ColumnNeed& need : needs) {
    const bool isWhole = need.importance == Importance::kIdentifier;
    least += isWhole ? need.widest : std::min(need.widest, need.minimum);
  }
  return least;
}

bool IsLessImportant(const std::vector<ColumnNeed>& needs, std::size_t a, std::size_t b) {
  const Importance ofA = needs[a].importance;
  const Importance ofB = needs[b].importance;
  return ofA != ofB ? ofA < ofB : a > b;
}

void ExpectFit(const std::vector<ColumnNeed>& needs, std::size_t room) {
  const Fitted fitted(needs, room);
  EXPECT_GE(fitted.shown, 1U);
  EXPECT_LE(fitted.total, room);
  EXPECT_TRUE(!fitted.isCut || fitted.total == room);
  EXPECT_TRUE(fitted.shown == needs.size() || LeastOf(needs) > room);
  for (std::size_t column = 0; column < needs.size(); ++column) {
    const ColumnNeed& need = needs[column];
    const std::size_t width = fitted.widths[column];
    const bool isWhole = need.importance == Importance::kIdentifier && fitted.hasOthers;
    const std::size_t least = isWhole ? need.widest : std::min(need.widest, need.minimum);
    EXPECT_LE(width, need.widest);
    EXPECT_TRUE(width == 0 || fitted.shown == 1 || width >= least);
    for (std::size_t other = 0; other < needs.size(); ++other) {
      EXPECT_TRUE(width > 0 || fitted.widths[other] == 0 || IsLessImportant(needs, column, other));
    }
  }
}

TEST(FitColumns, UsesTheRoomForWhatMattersMostWhateverTheColumns) {
  std::mt19937 random(1);
  const auto below = [&random](std::size_t bound) { return random() % bound; };
  for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
    std::vector<ColumnNeed> needs(1 + below(8));
    for (ColumnNeed& need : needs) {
      need = {1 + below(40), 1 + below(20), static_cast<Importance>(below(4))};
    }
    for (std::size_t room = 1; room <= 120; ++room) ExpectFit(needs, room);
  }
}

}  // namespace
}  // namespace usbinfo_test
