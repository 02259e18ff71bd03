#include "cli/text/DisplayWidth.h"

#include <algorithm>
#include <cwchar>

#include "cli/text/MapCharacters.h"

namespace cli {

namespace {

/// Negative when the locale does not know how to print the character.
int ColumnsOf(const Character& character) {
  return character.isValid ? ::wcwidth(static_cast<wchar_t>(character.code)) : -1;
}

/// The number of bytes at the beginning of `text` that take at most `width` columns.
std::size_t FittingBytes(std::string_view text, std::size_t width) {
  std::size_t taken = 0;
  std::size_t at = 0;
  while (at < text.size()) {
    const Character character = FirstCharacter(text.substr(at));
    taken += static_cast<std::size_t>(std::max(ColumnsOf(character), 0));
    if (taken > width) break;
    at += character.bytes.size();
  }
  return at;
}

}  // namespace

std::string EscapeUnprintable(std::string_view text) {
  return MapCharacters(text, [](const Character& character, bool /*isUnprintable*/, std::string& out) {
    if (ColumnsOf(character) >= 0) {
      out += character.bytes;
    } else {
      AppendByteEscapes(character.bytes, out);
    }
  });
}

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = FirstCharacter(text.substr(at));
    width += static_cast<std::size_t>(std::max(ColumnsOf(character), 0));
    at += character.bytes.size();
  }
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t width, std::string_view mark) {
  if (FittingBytes(text, width) == text.size()) return std::string(text);
  return std::string(text.substr(0, FittingBytes(text, width - 1))).append(mark);
}

}  // namespace cli
