#include "tests/fuzz/Utf8.h"

#include <locale.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <sstream>

#include "cli/text/CombiningMarks.h"
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

/// A piece of text: a whole character, or `length` bytes that are not one.
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

/// Controls, line ends and noncharacters.
bool IsControl(std::uint32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
         character == 0x2029 || (character & 0xFFFEU) == 0xFFFE ||
         (character >= 0xFDD0 && character <= 0xFDEF);
}

bool IsMark(std::uint32_t character) {
  return std::any_of(std::begin(cli::kCombiningMarks), std::end(cli::kCombiningMarks),
                     [=](const auto& range) { return range.first <= character && character <= range.last; });
}

/// As the C library has it for UTF-8, whatever the locale is; negative for what it does not know.
int WidthOf(std::uint32_t character) {
  static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  Require(utf8 != nullptr, "the machine has the locale");
  const locale_t before = ::uselocale(utf8);
  const int width = ::wcwidth(static_cast<wchar_t>(character));
  static_cast<void>(::uselocale(before));
  return width;
}

/// Takes no room by itself, or is a blank that passes for a letter, or is reserved for such.
bool IsInvisible(std::uint32_t character) {
  constexpr std::uint32_t kFillers[] = {0xAD, 0x115F, 0x3164, 0xFFA0};
  const bool isFiller = std::find(std::begin(kFillers), std::end(kFillers), character) != std::end(kFillers);
  // Some C libraries give the controls of hieroglyphs and of annotations a column.
  const bool isControl =
      (character >= 0xFFF9 && character <= 0xFFFB) || (character >= 0x13430 && character <= 0x1343F);
  const bool isReserved = character == 0x2065 || (character >= 0xFFF0 && character <= 0xFFF8) ||
                          (character >= 0xE0000 && character <= 0xE0FFF);
  return isFiller || isControl || isReserved || (WidthOf(character) == 0 && !IsMark(character));
}

bool SelectsVariation(std::uint32_t character) {
  return (character >= 0xFE00 && character <= 0xFE0F) || (character >= 0xE0100 && character <= 0xE01EF);
}

/// Goes through a text: what is bad depends on what stands before it.
class BadCharacters {
 public:
  bool IsBad(std::uint32_t character) {
    if (character < 0x80) {
      fMarks = 0;
      fTakesSelector = false;
      return IsControl(character);
    }
    fMarks = IsMark(character) ? fMarks + 1 : 0;
    const bool isSelector = SelectsVariation(character);
    const bool isBad =
        IsControl(character) || fMarks > 4 || (isSelector ? !fTakesSelector : IsInvisible(character));
    fTakesSelector = !isBad && !isSelector && fMarks == 0 && character >= 0x2000;
    return isBad;
  }
  void PassBroken() { *this = BadCharacters(); }

 private:
  std::size_t fMarks = 0;
  bool fTakesSelector = false;
};

/// By the locale's character set; throws BrokenInvariant when something in it cannot be printed.
std::size_t ColumnsOf(const std::string& line) {
  std::wstring wide(line.size(), L'\0');
  const std::size_t length = std::mbstowcs(wide.data(), line.c_str(), wide.size());
  Require(length != static_cast<std::size_t>(-1), "the text is of the locale's character set");
  const int columns = ::wcswidth(wide.data(), length);
  Require(columns >= 0, "the locale can print the text");
  return static_cast<std::size_t>(columns);
}

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
  constexpr char kDigits[] = "0123456789abcdef";
  BadCharacters characters;
  std::string shown;
  for (std::size_t at = 0; at < text.size();) {
    const Piece piece = PieceAt(text, at);
    if (!piece.isWhole) characters.PassBroken();
    const bool isBad = !piece.isWhole || characters.IsBad(piece.character);
    const std::string bytes = text.substr(at, piece.length);
    at += piece.length;
    if (bytes == "\\" || bytes == "\n") {
      shown += bytes == "\n" ? "\\n" : "\\\\";
    } else if (!isBad) {
      shown += bytes;
    } else {
      for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        shown.append("\\x").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 0xFU]);
      }
    }
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
  BadCharacters characters;
  ForEachCharacter(text, [&](std::uint32_t character) {
    const bool isBad = characters.IsBad(character);
    if (character == '\n' || (tabs && character == '\t')) return;
    Require(!isBad, "the text holds a character that acts or is not seen");
  });
}

void RequireFitForTable(const std::string& text, std::size_t columns) {
  constexpr std::size_t kWidest = 256;
  RequireFitForTerminal(text, false);
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    Require(ColumnsOf(line) <= columns * (kWidest + 1), "no cell is wider than cells may be");
  }
}

}  // namespace usbinfo_test
