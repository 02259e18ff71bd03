// Foreign texts converted for JSON, for one line on a terminal and for places where the reading direction
// matters.
#include <gmock/gmock.h>

#include <string>

#include "cli/text/Text.h"
#include "tests/cli/support/CliTest.h"

using cli::EscapeForTerminal;

namespace usbinfo_test {
namespace {

class EscapeForTerminalTest : public testing::Test {
 private:
  const CharacterSet fCharacters{"C.UTF-8"};
};

TEST_F(EscapeForTerminalTest, LeavesLettersBlanksAndTabsAsTheyAre) {
  EXPECT_EQ(EscapeForTerminal(""), "");
  EXPECT_EQ(EscapeForTerminal("a b\t\tc ~"), "a b\t\tc ~");
  EXPECT_EQ(EscapeForTerminal("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"),
            "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST_F(EscapeForTerminalTest, PutsEverythingOnOneLine) {
  EXPECT_EQ(EscapeForTerminal("a\nb\n"), "a\\nb\\n");
}

TEST_F(EscapeForTerminalTest, DoublesBackslashesSoThatNoEscapeCanBeFeigned) {
  EXPECT_EQ(EscapeForTerminal("\\"), "\\\\");
  EXPECT_EQ(EscapeForTerminal("\\n\\x1b"), "\\\\n\\\\x1b");
}

TEST_F(EscapeForTerminalTest, SpellsControlCharactersOfTheFirstSet) {
  EXPECT_EQ(EscapeForTerminal(std::string("\0", 1)), "\\x00");
  EXPECT_EQ(EscapeForTerminal("\x01\x07\x08\x0B\x0C\r\x1B\x1F\x7F"),
            "\\x01\\x07\\x08\\x0b\\x0c\\x0d\\x1b\\x1f\\x7f");
  EXPECT_EQ(EscapeForTerminal("\x1B[31mred"), "\\x1b[31mred");
}

TEST_F(EscapeForTerminalTest, SpellsControlCharactersOfTheSecondSetButNotTheNextCharacter) {
  EXPECT_EQ(EscapeForTerminal("\xC2\x80\xC2\x9B\xC2\x9F"), "\\xc2\\x80\\xc2\\x9b\\xc2\\x9f");
  EXPECT_EQ(EscapeForTerminal("\xC2\xA0\xC3\x80"), "\xC2\xA0\xC3\x80");
}

TEST_F(EscapeForTerminalTest, SpellsTheUnicodeLineEnds) {
  EXPECT_EQ(EscapeForTerminal("\xE2\x80\xA8|\xE2\x80\xA9"), "\\xe2\\x80\\xa8|\\xe2\\x80\\xa9");
  EXPECT_EQ(EscapeForTerminal("\xE2\x80\xA7"), "\xE2\x80\xA7");
}

TEST_F(EscapeForTerminalTest, SpellsEveryDirectionMark) {
  EXPECT_EQ(EscapeForTerminal("\xD8\x9C"), "\\xd8\\x9c");
  EXPECT_EQ(EscapeForTerminal("\xE2\x80\x8E\xE2\x80\x8F"), "\\xe2\\x80\\x8e\\xe2\\x80\\x8f");
  EXPECT_EQ(EscapeForTerminal("\xE2\x80\xAA\xE2\x80\xAB\xE2\x80\xAC\xE2\x80\xAD\xE2\x80\xAE"),
            "\\xe2\\x80\\xaa\\xe2\\x80\\xab\\xe2\\x80\\xac\\xe2\\x80\\xad\\xe2\\x80\\xae");
  EXPECT_EQ(EscapeForTerminal("\xE2\x81\xA6\xE2\x81\xA7\xE2\x81\xA8\xE2\x81\xA9"),
            "\\xe2\\x81\\xa6\\xe2\\x81\\xa7\\xe2\\x81\\xa8\\xe2\\x81\\xa9");
}

TEST_F(EscapeForTerminalTest, SpellsWhatIsNotSeenAndMarksAfterFourOthers) {
  EXPECT_EQ(EscapeForTerminal("a\xE2\x80\x8B\xC2\xADz"), "a\\xe2\\x80\\x8b\\xc2\\xadz");
  EXPECT_EQ(EscapeForTerminal("\xF3\xA0\x81\x81"), "\\xf3\\xa0\\x81\\x81");
  const std::string four = "a\xCC\x81\xCC\x81\xCC\x81\xCC\x81";
  EXPECT_EQ(EscapeForTerminal(four + "\xCC\x81z\xCC\x81"), four + "\\xcc\\x81z\xCC\x81");
}

TEST_F(EscapeForTerminalTest, QuotesSoThatNothingInsideEndsTheQuotation) {
  EXPECT_EQ(cli::QuoteForTerminal(""), R"("")");
  EXPECT_EQ(cli::QuoteForTerminal("a \"b\"\t\n\\\xE2\x80\x8B\xC3\xA9"), R"("a \"b\"\t\n\\\xe2\x80\x8b)"
                                                                        "\xC3\xA9\"");
}

TEST_F(EscapeForTerminalTest, SpellsBytesThatAreNotUtf8AndGoesOnAfterThem) {
  EXPECT_EQ(EscapeForTerminal("a\xFFz"), "a\\xffz");
  EXPECT_EQ(EscapeForTerminal("\xE2\x82"), "\\xe2\\x82");
  EXPECT_EQ(EscapeForTerminal("\xF0\xE2\x80\xAEz"), "\\xf0\\xe2\\x80\\xaez");
  EXPECT_EQ(EscapeForTerminal("\xC0\x9B"), "\\xc0\\x9b");
}

TEST_F(EscapeForTerminalTest, SpellsAllBeyondAsciiWhereTheLocaleIsNotOneOfUtf8) {
  const CharacterSet ascii("C");
  EXPECT_EQ(EscapeForTerminal("a\xC3\x9B"
                              "31mz\t\n\\"),
            "a\\xc3\\x9b31mz\t\\n\\\\");
  EXPECT_EQ(EscapeForTerminal("\xF0\x9F\x98\x80\xFF"), "\\xf0\\x9f\\x98\\x80\\xff");
}

TEST(SplitAtCommas, GivesTheParts) {
  EXPECT_THAT(cli::SplitAtCommas(""), testing::IsEmpty());
  EXPECT_THAT(cli::SplitAtCommas("a"), testing::ElementsAre("a"));
  EXPECT_THAT(cli::SplitAtCommas("a,b c,,d"), testing::ElementsAre("a", "b c", "", "d"));
}

TEST(EscapeForDocumentTest, SpellsTabsAndLeavesLettersInEveryLocale) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    const CharacterSet set(locale);
    EXPECT_EQ(cli::EscapeForDocument("M\xC3\xA4us\t\\\n\xE2\x80\x8B\xFF"),
              "M\xC3\xA4us\\x09\\\\\\n\\xe2\\x80\\x8b\\xff");
  }
}

}  // namespace
}  // namespace usbinfo_test
