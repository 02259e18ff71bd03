// Reading of whole numbers.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace kernel {

/// The number that the decimal digits make; nothing where there are none, anything else, or a number above
/// `most`.
inline std::optional<unsigned> ParseNumber(std::string_view digits, unsigned most) {
  unsigned number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || number > most) return std::nullopt;
  return number;
}

}  // namespace kernel
