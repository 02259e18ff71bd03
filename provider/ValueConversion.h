// Conversions between text and numbers, all through a string stream in the classic locale, so that the
// host's own locale never changes a property. Every builder of property maps uses them.
#pragma once

#include <ios>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace conversion_detail {

/// A stream for one conversion, with the default formatting. It throws std::bad_alloc when memory is short;
/// by default a stream hides that, and a shortened text would pass for the whole.
inline std::stringstream NewStream() {
  std::stringstream stream(std::ios_base::in | std::ios_base::out);
  stream.imbue(std::locale::classic());
  stream.exceptions(std::ios_base::badbit);
  return stream;
}

}  // namespace conversion_detail

/// `data` as text: strings unchanged, numbers in decimal, a null character pointer as the empty text.
template <typename T>
std::string dataToString(T data) {
  if constexpr (std::is_pointer_v<T>) {
    if (data == nullptr) return std::string();
  }
  std::stringstream stream = conversion_detail::NewStream();
  stream << data;
  return stream.str();
}

/// The decimal number that `text` begins with, leading blanks skipped; 0 when there is none, and what
/// formatted extraction gives when it is out of range. For `unsigned char` the first non-blank character
/// itself, not its digit value.
template <typename T>
T stringToDataType(std::string text) {
  T result = 0;
  if (text.empty()) return result;
  std::stringstream stream = conversion_detail::NewStream();
  stream << text;
  stream >> result;
  return result;
}

/// The hexadecimal number that `text` begins with, despite the function's name. Leading blanks are not
/// skipped: a text that starts with one gives 0.
template <typename T>
T ExtractDecimalDataToHex(std::string text) {
  T result = 0;
  if (text.empty()) return result;
  std::stringstream stream = conversion_detail::NewStream();
  stream.flags(std::ios_base::hex);
  stream << text;
  stream.flags(std::ios_base::hex);
  stream >> result;
  return result;
}
