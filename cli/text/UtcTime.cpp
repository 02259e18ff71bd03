#include "cli/text/UtcTime.h"

#include <fmt/format.h>

#include <charconv>
#include <cstddef>
#include <string_view>

namespace cli {

namespace {

constexpr int kFirstYear = 1900;

int NumberAt(std::string_view text, std::size_t at, std::size_t digits) {
  int number = 0;
  std::from_chars(text.data() + at, text.data() + at + digits, number);
  return number;
}

bool HasFormOfTime(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  if (text.size() != kForm.size()) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isDigit = text[at] >= '0' && text[at] <= '9';
    if (kForm[at] == '0' ? !isDigit : text[at] != kForm[at]) return false;
  }
  return true;
}

}  // namespace

std::string FormatUtc(std::time_t time) {
  std::tm parts{};
  ::gmtime_r(&time, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + kFirstYear, parts.tm_mon + 1,
                     parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::optional<std::time_t> ParseUtc(const std::string& text) {
  if (!HasFormOfTime(text)) return std::nullopt;
  std::tm parts{};
  parts.tm_year = NumberAt(text, 0, 4) - kFirstYear;
  parts.tm_mon = NumberAt(text, 5, 2) - 1;
  parts.tm_mday = NumberAt(text, 8, 2);
  parts.tm_hour = NumberAt(text, 11, 2);
  parts.tm_min = NumberAt(text, 14, 2);
  parts.tm_sec = NumberAt(text, 17, 2);
  const std::time_t time = ::timegm(&parts);
  // timegm carries what is out of range over to the next unit.
  return FormatUtc(time) == text ? std::optional(time) : std::nullopt;
}

}  // namespace cli
