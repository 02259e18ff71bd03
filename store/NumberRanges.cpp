#include "store/NumberRanges.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>
#include <system_error>

#include "cli/text/Text.h"

namespace store {

namespace {

std::optional<std::int64_t> ParseNumber(std::string_view text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// Appends the numbers of "19" or "19-24"; false for any other text.
bool AppendRange(std::string_view range, std::vector<std::int64_t>& numbers) {
  // More items than a report of 64 MiB has.
  constexpr std::int64_t kMost = 1 << 26;
  const std::size_t dash = range.find('-');
  const auto first = ParseNumber(range.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : ParseNumber(range.substr(dash + 1));
  if (!first || !last || *first < 1 || *last < *first || *last - *first > kMost) return false;
  for (std::int64_t number = *first; number <= *last; ++number) numbers.push_back(number);
  return true;
}

}  // namespace

std::string FormatRanges(const std::vector<std::int64_t>& numbers) {
  std::string text;
  for (std::size_t begin = 0; begin < numbers.size();) {
    std::size_t end = begin + 1;
    while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) ++end;
    if (!text.empty()) text += ',';
    text += std::to_string(numbers[begin]);
    if (end - begin > 1) text += '-' + std::to_string(numbers[end - 1]);
    begin = end;
  }
  return text;
}

std::optional<std::vector<std::int64_t>> ParseRanges(const std::string& text) {
  std::vector<std::int64_t> numbers;
  for (const std::string& range : cli::SplitAtCommas(text)) {
    if (!AppendRange(range, numbers)) return std::nullopt;
  }
  return numbers;
}

}  // namespace store
