// Which characters count as unprintable, against the C library's own table of what takes no room.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

#include "cli/text/CombiningMarks.h"
#include "cli/text/Unprintable.h"
#include "tests/cli/support/CliTest.h"

using testing::ElementsAre;

namespace usbinfo_test {
namespace {

constexpr char32_t kEnd = 0x110000;

std::string Hexadecimal(char32_t code) {
  return fmt::format("U+{:04X}", static_cast<unsigned int>(code));
}

cli::Character CharacterOf(char32_t code) {
  return {"?", code, true};
}

/// For each of `codes`, in their order, whether it is unprintable.
std::vector<bool> Unprintable(const std::vector<char32_t>& codes) {
  cli::UnprintableFinder finder;
  std::vector<bool> found;
  for (const char32_t code : codes) found.push_back(finder.IsUnprintable(CharacterOf(code)));
  return found;
}

bool IsUnprintable(char32_t code) {
  return Unprintable({code}).front();
}

template <typename Ranges>
bool IsIn(const Ranges& ranges, char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges), [code](const cli::CodeRange& range) {
    return range.first <= code && code <= range.last;
  });
}

bool IsMark(char32_t code) {
  return IsIn(cli::kCombiningMarks, code);
}

/// The soft hyphen, the fillers of Hangul, annotation anchors and the joiners of hieroglyphs: drawn as blanks
/// or not at all. It depends on the C library's version of Unicode which of them have a width.
constexpr cli::CodeRange kBlanks[] = {{0xAD, 0xAD},     {0x115F, 0x115F}, {0x3164, 0x3164},
                                      {0xFFA0, 0xFFA0}, {0xFFF9, 0xFFFB}, {0x13430, 0x1343F}};

/// Unicode 16 made this mark one that takes a column.
constexpr char32_t kMarkUntilUnicode15 = 0x1171E;

TEST(Unprintable, IsEveryCharacterWithoutAWidthThatIsNoMarkAndEveryBlank) {
  const CharacterSet utf8("C.UTF-8");
  for (char32_t code = 0; code < kEnd; ++code) {
    const int width = ::wcwidth(static_cast<wchar_t>(code));
    EXPECT_TRUE(width != 0 || IsUnprintable(code) != IsMark(code)) << Hexadecimal(code);
    EXPECT_TRUE(width <= 0 || IsUnprintable(code) == IsIn(kBlanks, code)) << Hexadecimal(code);
  }
}

TEST(CombiningMarks, AreSortedAndHaveNoWidth) {
  const CharacterSet utf8("C.UTF-8");
  char32_t before = 0;
  for (const cli::CodeRange& range : cli::kCombiningMarks) {
    EXPECT_TRUE(before < range.first && range.first <= range.last) << Hexadecimal(range.first);
    before = range.last;
    // Those that the library does not know yet have a negative width.
    for (char32_t code = range.first; code <= range.last; ++code) {
      EXPECT_TRUE(code == kMarkUntilUnicode15 || ::wcwidth(static_cast<wchar_t>(code)) <= 0)
          << Hexadecimal(code);
    }
  }
}

TEST(Unprintable, AreControlsNoncharactersAndBytesThatAreNotUtf8) {
  for (const char32_t code : {0x00U, 0x09U, 0x1FU, 0x7FU, 0x9FU, 0x2028U, 0x2029U, 0xFDD0U, 0xFDEFU, 0xFFFEU,
                              0xFFFFU, 0x1FFFEU, 0x10FFFFU}) {
    EXPECT_TRUE(IsUnprintable(code)) << Hexadecimal(code);
  }
  EXPECT_TRUE(cli::UnprintableFinder().IsUnprintable({"\xFF", 0xFFFD, false}));
  for (const char32_t code : {0x20U, 0x7EU, 0xA0U, 0xE9U, 0x200AU, 0x2010U, 0x20ACU, 0xFFFDU, 0x1F600U}) {
    EXPECT_FALSE(IsUnprintable(code)) << Hexadecimal(code);
  }
}

TEST(Unprintable, IsEveryMarkAfterFourOthersUntilAnotherCharacterComes) {
  EXPECT_THAT(Unprintable({U'a', 0x301, 0x302, 0x303, 0xE47, 0x304, 0x305, U'b', 0x301}),
              ElementsAre(false, false, false, false, false, true, true, false, false));
}

TEST(Unprintable, IsEveryVariationSelectorExceptAfterASymbol) {
  EXPECT_THAT(Unprintable({0x2764, 0xFE0F, 0xFE0F}), ElementsAre(false, false, true));
  EXPECT_THAT(Unprintable({0x845B, 0xE0100, 0xE0101}), ElementsAre(false, false, true));
  EXPECT_THAT(Unprintable({U'a', 0xFE0F, 0xE9, 0xFE0E}), ElementsAre(false, true, false, true));
  EXPECT_THAT(Unprintable({0xFE0F}), ElementsAre(true));
  EXPECT_THAT(Unprintable({0x2764, 0x200D, 0xFE0F}), ElementsAre(false, true, true));
}

}  // namespace
}  // namespace usbinfo_test
