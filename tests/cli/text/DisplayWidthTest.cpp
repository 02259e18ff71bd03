// The display width of texts in a UTF-8 and in an ASCII locale, and texts cut to a width.
#include <gtest/gtest.h>

#include <string>

#include "cli/text/DisplayWidth.h"
#include "tests/cli/support/CliTest.h"

using cli::CutToWidth;
using cli::EscapeUnprintable;

namespace usbinfo_test {
namespace {

TEST(DisplayWidth, CountsColumnsAndNotBytes) {
  const CharacterSet characters("C.UTF-8");
  EXPECT_EQ(cli::DisplayWidth(""), 0U);
  EXPECT_EQ(cli::DisplayWidth("ab ~"), 4U);
  EXPECT_EQ(cli::DisplayWidth("é"), 1U);
  EXPECT_EQ(cli::DisplayWidth("e\xCC\x81"), 1U);
  EXPECT_EQ(cli::DisplayWidth("字"), 2U);
  EXPECT_EQ(cli::DisplayWidth("\xF0\x9F\x98\x80"), 2U);
}

TEST(CutToWidth, LeavesWhatFitsAsItIs) {
  EXPECT_EQ(CutToWidth("", 1, "~"), "");
  EXPECT_EQ(CutToWidth("abc", 3, "~"), "abc");
  EXPECT_EQ(CutToWidth("abc", 4, "~"), "abc");
}

TEST(CutToWidth, EndsWhatItCutsInTheMark) {
  EXPECT_EQ(CutToWidth("abcd", 3, "~"), "ab~");
  EXPECT_EQ(CutToWidth("abcd", 3, "…"), "ab…");
  EXPECT_EQ(CutToWidth("abcd", 1, "~"), "~");
}

TEST(CutToWidth, CutsNoCharacterInTwo) {
  const CharacterSet characters("C.UTF-8");
  EXPECT_EQ(CutToWidth("字字", 4, "~"), "字字");
  EXPECT_EQ(CutToWidth("字字", 3, "~"), "字~");
  EXPECT_EQ(CutToWidth("字字", 2, "~"), "~");
  EXPECT_EQ(CutToWidth("e\xCC\x81x\xCC\x81", 2, "~"), "e\xCC\x81x\xCC\x81");
  EXPECT_EQ(CutToWidth("e\xCC\x81xyz", 2, "~"), "e\xCC\x81~");
}

TEST(EscapeUnprintable, SpellsWhatHasNoWidthOfItsOwn) {
  {
    const CharacterSet characters("C.UTF-8");
    EXPECT_EQ(EscapeUnprintable("aé字 e\xCC\x81"), "aé字 e\xCC\x81");
    EXPECT_EQ(EscapeUnprintable("\t\x1B\x7F"), "\\x09\\x1b\\x7f");
    EXPECT_EQ(EscapeUnprintable("\xCD\xB8z\xFFz\xE2\x82"), "\\xcd\\xb8z\\xffz\\xe2\\x82");
  }
  const CharacterSet characters("C");
  EXPECT_EQ(EscapeUnprintable("a\xC3\xA9"), "a\\xc3\\xa9");
}

}  // namespace
}  // namespace usbinfo_test
