// UTF-8 taken apart into characters, with what is not UTF-8 found on the way. The one decoder of the command:
// a USB device chooses its strings, so any byte may stand in one.
#pragma once

#include <string>
#include <string_view>

namespace cli {

/// U+FFFD, which stands for what cannot be shown or written.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Character {
  /// One to four bytes of the text.
  std::string_view bytes;
  /// U+FFFD where the bytes are not UTF-8.
  char32_t code;
  bool isValid;
};

/// The character that `text`, which must not be empty, begins with. Where it begins with none, the bytes are
/// the longest beginning of one that stands there, at least one: what the Unicode Standard (3.9, "U+FFFD
/// Substitution of Maximal Subparts") recommends to replace as one.
Character FirstCharacter(std::string_view text);

/// Appends `\xHH` for each of `bytes`, the digits in lower case.
void AppendByteEscapes(std::string_view bytes, std::string& out);

/// Appends `code` as UTF-16 in hexadecimal: `prefix` and four lowercase digits, twice (surrogates) beyond
/// U+FFFF.
void AppendUtf16Escape(std::string_view prefix, char32_t code, std::string& out);

}  // namespace cli
