#include "cli/text/DisplayWidth.h"

#include <fmt/format.h>

#include <algorithm>
#include <cwchar>

namespace cli {

namespace {

/// A character at the beginning of a text.
struct Glyph {
  std::size_t bytes;
  /// Negative when it is not printable.
  int columns;
};

Glyph FirstGlyph(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {1, first < 0x20 || first == 0x7F ? -1 : 1};
  std::mbstate_t state{};
  wchar_t character = 0;
  const std::size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
  if (bytes == 0 || bytes > text.size()) return {1, -1};
  return {bytes, ::wcwidth(character)};
}

/// The number of bytes at the beginning of `text` that take at most `width` columns.
std::size_t FittingBytes(std::string_view text, std::size_t width) {
  std::size_t taken = 0;
  std::size_t at = 0;
  while (at < text.size()) {
    const Glyph glyph = FirstGlyph(text.substr(at));
    taken += static_cast<std::size_t>(std::max(glyph.columns, 0));
    if (taken > width) break;
    at += glyph.bytes;
  }
  return at;
}

}  // namespace

std::string EscapeUnprintable(std::string_view text) {
  std::string escaped;
  for (std::size_t at = 0; at < text.size();) {
    const Glyph glyph = FirstGlyph(text.substr(at));
    const std::string_view bytes = text.substr(at, glyph.bytes);
    if (glyph.columns >= 0) {
      escaped += bytes;
    } else {
      for (const char c : bytes) escaped += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
    }
    at += glyph.bytes;
  }
  return escaped;
}

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Glyph glyph = FirstGlyph(text.substr(at));
    width += static_cast<std::size_t>(std::max(glyph.columns, 0));
    at += glyph.bytes;
  }
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t width, std::string_view mark) {
  if (FittingBytes(text, width) == text.size()) return std::string(text);
  return std::string(text.substr(0, FittingBytes(text, width - 1))).append(mark);
}

}  // namespace cli
