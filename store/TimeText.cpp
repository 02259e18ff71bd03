#include "store/TimeText.h"

#include <fmt/format.h>

#include <charconv>
#include <ctime>
#include <string_view>

#include "cli/option/UsageError.h"

namespace store {

namespace {

constexpr int kFirstYear = 1900;
constexpr std::string_view kForm = "0000-00-00T00:00:00Z";

int NumberAt(std::string_view text, std::size_t at, std::size_t digits) {
  int number = 0;
  std::from_chars(text.data() + at, text.data() + at + digits, number);
  return number;
}

bool HasForm(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isDigit = text[at] >= '0' && text[at] <= '9';
    if (kForm[at] == '0' ? !isDigit : text[at] != kForm[at]) return false;
  }
  return true;
}

std::optional<Seconds> UnitOf(char letter) {
  constexpr Seconds kMinute = 60;
  constexpr Seconds kHour = 60 * kMinute;
  constexpr Seconds kDay = 24 * kHour;
  switch (letter) {
    case 's':
      return 1;
    case 'm':
      return kMinute;
    case 'h':
      return kHour;
    case 'd':
      return kDay;
    case 'w':
      return 7 * kDay;
    default:
      return std::nullopt;
  }
}

std::optional<Seconds> FindDuration(const std::string& text) {
  constexpr std::size_t kMostDigits = 9;
  constexpr Seconds kLongest = 1000LL * 365 * 24 * 60 * 60;
  if (text.size() < 2 || text.size() > kMostDigits + 1) return std::nullopt;
  Seconds number = 0;
  const char* const last = text.data() + text.size() - 1;
  const auto [stop, error] = std::from_chars(text.data(), last, number);
  const std::optional<Seconds> unit = UnitOf(*last);
  if (stop != last || error != std::errc() || number < 0 || !unit) return std::nullopt;
  if (number > kLongest / *unit) return std::nullopt;
  return number * *unit;
}

/// The time whose text is shortened to the day, the minute or the second, with or without a Z.
std::optional<Seconds> FindShortTime(std::string text) {
  constexpr std::size_t kBlank = 10;
  if (!text.empty() && text.back() == 'Z') text.pop_back();
  if (text.size() > kBlank && text[kBlank] == ' ') text[kBlank] = 'T';
  constexpr std::string_view kRest = "T00:00:00Z";
  for (const std::size_t kept : {kRest.size(), std::size_t{4}, std::size_t{1}}) {
    if (const auto time = ParseTime(text + std::string(kRest.substr(kRest.size() - kept)))) return time;
  }
  return std::nullopt;
}

}  // namespace

std::string FormatTime(Seconds time) {
  const auto seconds = static_cast<std::time_t>(time);
  std::tm parts{};
  ::gmtime_r(&seconds, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + kFirstYear, parts.tm_mon + 1,
                     parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::optional<Seconds> ParseTime(const std::string& text) {
  if (!HasForm(text)) return std::nullopt;
  std::tm parts{};
  parts.tm_year = NumberAt(text, 0, 4) - kFirstYear;
  parts.tm_mon = NumberAt(text, 5, 2) - 1;
  parts.tm_mday = NumberAt(text, 8, 2);
  parts.tm_hour = NumberAt(text, 11, 2);
  parts.tm_min = NumberAt(text, 14, 2);
  parts.tm_sec = NumberAt(text, 17, 2);
  const Seconds time = ::timegm(&parts);
  // timegm carries what is out of range over to the next unit.
  return FormatTime(time) == text ? std::optional(time) : std::nullopt;
}

Seconds ParseDuration(const std::string& text) {
  const std::optional<Seconds> duration = FindDuration(text);
  if (!duration) {
    throw cli::UsageError(fmt::format(
        R"("{}" is no duration: it must be a number and one of s, m, h, d, w, such as "2d")", text));
  }
  return *duration;
}

Moment Moment::Parse(const std::string& text) {
  if (const auto ago = FindDuration(text)) return {*ago, true};
  if (const auto time = FindShortTime(text)) return {*time, false};
  throw cli::UsageError(fmt::format(
      R"("{}" is no time: it must be one in UTC, such as "2026-03-15" or "2026-03-15T12:00:00Z", )"
      R"(or how long ago, such as "2d")",
      text));
}

}  // namespace store
