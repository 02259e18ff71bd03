#include "tests/fuzz/Utf8.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <set>
#include <utility>

#include "tests/fuzz/BrokenInvariant.h"

namespace usbinfo_test {

namespace {

/// A row of the table of well-formed sequences beyond ASCII: the range of the first byte, its own bits, the
/// range of the second byte, and the length. All further bytes are from 0x80 to 0xBF.
struct Sequence {
  unsigned char firstLow, firstHigh, firstBits, secondLow, secondHigh;
  std::size_t length;
};

constexpr Sequence kSequences[] = {{0xC2, 0xDF, 0x1F, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0x0F, 0xA0, 0xBF, 3},
                                   {0xE1, 0xEC, 0x0F, 0x80, 0xBF, 3}, {0xED, 0xED, 0x0F, 0x80, 0x9F, 3},
                                   {0xEE, 0xEF, 0x0F, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x07, 0x90, 0xBF, 4},
                                   {0xF1, 0xF3, 0x07, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x07, 0x80, 0x8F, 4}};

/// What stands at one place: a whole character, or a piece of `length` bytes that is none.
struct Piece {
  std::size_t length;
  bool isWhole;
  std::uint32_t character;
};

Piece PieceAt(const std::string& text, std::size_t at) {
  const auto first = static_cast<unsigned char>(text[at]);
  if (first < 0x80) return {1, true, first};
  const auto* const row =
      std::find_if(std::begin(kSequences), std::end(kSequences),
                   [first](const auto& each) { return first >= each.firstLow && first <= each.firstHigh; });
  if (row == std::end(kSequences)) return {1, false, 0};
  std::uint32_t character = first & row->firstBits;
  for (std::size_t index = 1; index < row->length; ++index) {
    const unsigned char low = index == 1 ? row->secondLow : 0x80;
    const unsigned char high = index == 1 ? row->secondHigh : 0xBF;
    if (at + index == text.size()) return {index, false, 0};
    const auto byte = static_cast<unsigned char>(text[at + index]);
    if (byte < low || byte > high) return {index, false, 0};
    character = (character << 6U) | (byte & 0x3FU);
  }
  return {row->length, true, character};
}

bool TurnsDirection(std::uint32_t character) {
  return character == 0x061C || character == 0x200E || character == 0x200F ||
         (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

bool IsControl(std::uint32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
         character == 0x2029;
}

bool IsNoCharacter(std::uint32_t character) {
  return (character & 0xFFFFU) >= 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
}

bool IsVariationSelector(std::uint32_t character) {
  return (character >= 0xFE00 && character <= 0xFE0F) || (character >= 0xE0100 && character <= 0xE01EF);
}

/// The columns that a terminal gives to the character, by the C library.
int WidthOf(std::uint32_t character) {
  static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  const locale_t before = ::uselocale(utf8);
  const int width = ::wcwidth(static_cast<wchar_t>(character));
  ::uselocale(before);
  return width;
}

/// Format controls, fillers and what is set aside for more of them.
bool IsBlankedOut(std::uint32_t character) {
  static const std::set<std::uint32_t> kLone = {0x00AD, 0x034F, 0x115F, 0x1160, 0x17B4,
                                                0x17B5, 0x3164, 0xFEFF, 0xFFA0};
  const auto isIn = [character](std::uint32_t first, std::uint32_t last) {
    return character >= first && character <= last;
  };
  return kLone.count(character) != 0 || isIn(0x180B, 0x180F) || isIn(0x200B, 0x200F) ||
         isIn(0x2060, 0x206F) || isIn(0xFFF0, 0xFFFB) || isIn(0x13430, 0x1343F) || isIn(0x1BCA0, 0x1BCA3) ||
         isIn(0x1D173, 0x1D17A) || isIn(0xE0000, 0xE0FFF);
}

/// Which characters of a text people see, asked for one after the other.
class Sight {
 public:
  bool Shows(std::uint32_t character) {
    constexpr int kMostMarks = 4;
    constexpr std::uint32_t kFirstSymbol = 0x2000;
    if (IsVariationSelector(character)) {
      fMarks = 0;
      return std::exchange(fShownBefore, 0) >= kFirstSymbol;
    }
    const bool isPlain = !IsControl(character) && !TurnsDirection(character) && !IsNoCharacter(character) &&
                         !IsBlankedOut(character);
    const bool isMark = isPlain && WidthOf(character) == 0;
    fMarks = isMark ? fMarks + 1 : 0;
    fShownBefore = isPlain && !isMark ? character : 0;
    return isPlain && fMarks <= kMostMarks;
  }

 private:
  int fMarks = 0;
  std::uint32_t fShownBefore = 0;
};

}  // namespace

std::string ReplaceBrokenUtf8(const std::string& text) {
  std::string replaced;
  for (std::size_t at = 0; at < text.size();) {
    const Piece piece = PieceAt(text, at);
    if (piece.isWhole) {
      replaced.append(text, at, piece.length);
    } else {
      replaced += "\xEF\xBF\xBD";
    }
    at += piece.length;
  }
  return replaced;
}

std::string AsShown(const std::string& text) {
  std::string shown;
  Sight sight;
  for (std::size_t at = 0; at < text.size();) {
    const Piece piece = PieceAt(text, at);
    const bool isShown = sight.Shows(piece.isWhole ? piece.character : 0);
    shown += isShown ? text.substr(at, piece.length) : "\xEF\xBF\xBD";
    at += piece.length;
  }
  return shown;
}

void ForEachCharacter(const std::string& text, const std::function<void(std::uint32_t character)>& take) {
  for (std::size_t at = 0; at < text.size();) {
    const Piece piece = PieceAt(text, at);
    Require(piece.isWhole, "the text is no UTF-8");
    take(piece.character);
    at += piece.length;
  }
}

void RequireFitForTerminal(const std::string& text, bool tabs) {
  Sight sight;
  ForEachCharacter(text, [tabs, &sight](std::uint32_t character) {
    const bool isShown = sight.Shows(character);
    if (character == '\n' || (tabs && character == '\t')) return;
    Require(isShown, "people see every character of the text, and none acts on a terminal");
  });
}

void RequireFitForCharacterSet(const std::string& text) {
  const bool isAscii = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
  Require(isAscii || MB_CUR_MAX > 1, "the text is ASCII where the character set is");
  RequireFitForTerminal(text, false);
}

}  // namespace usbinfo_test
