#include "cli/text/Unprintable.h"

#include <algorithm>
#include <iterator>

#include "cli/text/CombiningMarks.h"

namespace cli {

namespace {

/// Controls, Default_Ignorable_Code_Point of DerivedCoreProperties.txt, the other format controls that show
/// nothing, and the first of the noncharacters. Sorted.
constexpr CodeRange kUnseen[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F}, {0x00AD, 0x00AD},   {0x034F, 0x034F},   {0x061C, 0x061C},
    {0x115F, 0x1160},   {0x17B4, 0x17B5}, {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F},   {0x3164, 0x3164}, {0xFDD0, 0xFDEF},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0},   {0xFFF0, 0xFFFB}, {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
    {0xE0000, 0xE0FFF},
};

template <typename Ranges>
bool IsIn(const Ranges& ranges, char32_t code) {
  const auto* const range = std::lower_bound(std::begin(ranges), std::end(ranges), code,
                                             [](const CodeRange& each, char32_t c) { return each.last < c; });
  return range != std::end(ranges) && range->first <= code;
}

/// The last two code points of each plane.
bool IsNoncharacter(char32_t code) {
  return (code & 0xFFFEU) == 0xFFFEU;
}

bool IsVariationSelector(char32_t code) {
  return (0xFE00 <= code && code <= 0xFE0F) || (0xE0100 <= code && code <= 0xE01EF);
}

/// Where Unicode's symbols begin; emoji and ideographs are behind them.
constexpr char32_t kFirstWithVariations = 0x2000;

}  // namespace

bool UnprintableFinder::IsUnprintable(const Character& character) {
  constexpr unsigned int kMostMarks = 4;
  const bool isMark = IsIn(kCombiningMarks, character.code);
  const bool isSelector = IsVariationSelector(character.code);
  fMarks = isMark ? fMarks + 1 : 0;
  const bool isUnseen = isSelector ? fBase < kFirstWithVariations : IsIn(kUnseen, character.code);
  const bool isUnprintable =
      !character.isValid || isUnseen || IsNoncharacter(character.code) || fMarks > kMostMarks;
  fBase = isUnprintable || isMark || isSelector ? 0 : character.code;
  return isUnprintable;
}

}  // namespace cli
