// What is suggested for a mistyped word.
#include <gtest/gtest.h>

#include "cli/option/Suggestion.h"

namespace usbinfo_test {
namespace {

using cli::EditDistance;
using cli::Nearest;

TEST(EditDistance, CountsLettersToInsertRemoveAndReplace) {
  EXPECT_EQ(EditDistance("", ""), 0U);
  EXPECT_EQ(EditDistance("", "abc"), 3U);
  EXPECT_EQ(EditDistance("abc", ""), 3U);
  EXPECT_EQ(EditDistance("kitten", "sitting"), 3U);
  EXPECT_EQ(EditDistance("diff", "dif"), 1U);
  EXPECT_EQ(EditDistance("abcd", "bcda"), 2U);
}

TEST(Nearest, IsTheWordThatDiffersLeast) {
  EXPECT_EQ(Nearest("--colour", {"--columns", "--color", "--class"}), "--color");
  EXPECT_EQ(Nearest("dfif", {"show", "diff"}), "");
  EXPECT_EQ(Nearest("diif", {"show", "diff"}), "diff");
}

TEST(Nearest, IsAWordThatBeginsSo) {
  EXPECT_EQ(Nearest("--sys", {"--system-name"}), "--system-name");
  EXPECT_EQ(Nearest("sc", {"schema"}), "");
}

TEST(Nearest, IsNoneWhereNoWordIsNear) {
  EXPECT_EQ(Nearest("--bogus", {"--log", "--class"}), "");
  EXPECT_EQ(Nearest("", {"show"}), "");
  EXPECT_EQ(Nearest(std::string(100000, 'x'), {"--devices"}), "");
}

}  // namespace
}  // namespace usbinfo_test
