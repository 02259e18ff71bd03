#include "tests/fuzz/Utf8.h"

#include <algorithm>
#include <cstdlib>

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

bool TurnsDirection(std::uint32_t character) {
  return character == 0x061C || character == 0x200E || character == 0x200F ||
         (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

bool IsControl(std::uint32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
         character == 0x2029;
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
  const std::string decoded = ReplaceBrokenUtf8(text);
  std::string shown;
  for (std::size_t at = 0; at < decoded.size();) {
    const Piece piece = PieceAt(decoded, at);
    const std::uint32_t character = piece.character;
    const bool isBad = IsControl(character) || TurnsDirection(character) || (character | 1U) == 0xFFFF;
    shown += isBad ? "\xEF\xBF\xBD" : decoded.substr(at, piece.length);
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
  ForEachCharacter(text, [tabs](std::uint32_t character) {
    if (character == '\n' || (tabs && character == '\t')) return;
    Require(!IsControl(character), "the text holds a control character");
    Require(!TurnsDirection(character), "the text holds a mark that turns the reading direction");
  });
}

void RequireFitForCharacterSet(const std::string& text) {
  const bool isAscii = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
  Require(isAscii || MB_CUR_MAX > 1, "the text is ASCII where the character set is");
  RequireFitForTerminal(text, false);
}

}  // namespace usbinfo_test
