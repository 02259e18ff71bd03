// Fitting foreign texts; see the header.
#include "cli/text/Text.h"

#include <fmt/format.h>
#include <langinfo.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>

namespace cli {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool IsDirectionMark(std::string_view character) {
  // NOLINTBEGIN(misc-misleading-bidirectional): written as escapes
  static constexpr std::array<std::string_view, 12> kMarks = {
      "\xD8\x9C",     "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA", "\xE2\x80\xAB", "\xE2\x80\xAC",
      "\xE2\x80\xAD", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"};
  // NOLINTEND(misc-misleading-bidirectional)
  for (const std::string_view mark : kMarks) {
    if (character == mark) return true;
  }
  return false;
}

/// Control characters of both sets and the two characters that some terminals take for line ends.
bool IsControl(std::string_view character) {
  const auto byte = static_cast<unsigned char>(character.back());
  if (character.size() == 1) return byte < 0x20 || byte == 0x7F;
  if (character.size() == 2) return character.front() == '\xC2' && byte < 0xA0;
  return character == "\xE2\x80\xA8" || character == "\xE2\x80\xA9";
}

/// U+FFFE and U+FFFF, which XML forbids.
bool IsNoCharacter(std::string_view character) {
  return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF";
}

std::string EscapeBytes(std::string_view bytes) {
  std::string escaped;
  for (const char c : bytes) escaped += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
  return escaped;
}

/// Whether who reads the lines takes the bytes of UTF-8 for characters; elsewhere some are control
/// characters.
bool IsLocaleUtf8() {
  return std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
}

std::string EscapeCharacter(std::string_view character) {
  if (character == "\\") return "\\\\";
  if (character == "\n") return "\\n";
  if (character == "\t") return "\t";
  if (IsControl(character) || IsDirectionMark(character)) return EscapeBytes(character);
  return std::string(character);
}

/// The number of a valid character of up to three bytes; those that are escaped have no more.
unsigned int CodePoint(std::string_view character) {
  constexpr unsigned int kLeadBits[] = {0x7F, 0x1F, 0x0F};
  constexpr unsigned int kFurtherBits = 6;
  unsigned int code = static_cast<unsigned char>(character.front()) & kLeadBits[character.size() - 1];
  for (const char c : character.substr(1)) {
    code = (code << kFurtherBits) | (static_cast<unsigned char>(c) & 0x3FU);
  }
  return code;
}

std::string EscapeCharacterForMof(std::string_view character) {
  if (character == "\\" || character == "\"") return "\\" + std::string(character);
  if (character == "\n") return "\\n";
  if (character == "\t") return "\\t";
  if (!IsControl(character) && !IsDirectionMark(character)) return std::string(character);
  return fmt::format("\\x{:04x}", CodePoint(character));
}

/// A character of UTF-8, or a single byte that is no part of one.
struct Character {
  std::string_view bytes;
  bool isValid;
};

Character CharacterAt(std::string_view text, std::size_t at) {
  const std::string_view bytes = text.substr(at, CharacterLength(text[at]));
  if (bytes.size() == 1 && static_cast<unsigned char>(bytes.front()) < 0x80) return {bytes, true};
  const std::string character(bytes);
  if (ReplaceInvalidUtf8(character) == character) return {bytes, true};
  return {bytes.substr(0, 1), false};
}

}  // namespace

std::size_t CharacterLength(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte < 0x80) return 1;
  if (byte < 0xE0) return 2;
  return byte < 0xF0 ? 3 : 4;
}

std::string ReplaceInvalidUtf8(const std::string& text) {
  // The way through JSON takes long, and most texts are plain.
  if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; })) return text;
  using nlohmann::json;
  const std::string valid = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return json::parse(valid).get<std::string>();
}

std::string EscapeForTerminal(const std::string& text) {
  const bool isUtf8 = IsLocaleUtf8();
  std::string escaped;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = CharacterAt(text, at);
    const bool isKnown = character.isValid && (isUtf8 || character.bytes.size() == 1);
    escaped += isKnown ? EscapeCharacter(character.bytes) : EscapeBytes(character.bytes);
    at += character.bytes.size();
  }
  return escaped;
}

std::string EscapeForMof(const std::string& text) {
  const std::string valid = ReplaceInvalidUtf8(text);
  std::string escaped;
  for (std::size_t at = 0; at < valid.size();) {
    const std::string_view character = CharacterAt(valid, at).bytes;
    escaped += EscapeCharacterForMof(character);
    at += character.size();
  }
  return escaped;
}

std::string ReplaceDirectionMarks(const std::string& text) {
  std::string replaced;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view character = CharacterAt(text, at).bytes;
    replaced += IsDirectionMark(character) ? kReplacement : character;
    at += character.size();
  }
  return replaced;
}

std::string ReplaceUnprintable(const std::string& text) {
  const std::string valid = ReplaceInvalidUtf8(text);
  std::string replaced;
  for (std::size_t at = 0; at < valid.size();) {
    const std::string_view character = std::string_view(valid).substr(at, CharacterLength(valid[at]));
    const bool isBad = IsControl(character) || IsDirectionMark(character) || IsNoCharacter(character);
    replaced += isBad ? kReplacement : character;
    at += character.size();
  }
  return replaced;
}

unsigned int ControlAt(const std::string& text, std::size_t at) {
  const std::string_view character = std::string_view(text).substr(at, CharacterLength(text[at]));
  return IsControl(character) || IsDirectionMark(character) ? CodePoint(character) : 0;
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, ',');) parts.push_back(part);
  return parts;
}

}  // namespace cli
