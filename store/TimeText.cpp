#include "store/TimeText.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>

#include "cli/option/UsageError.h"
#include "cli/text/UtcTime.h"

namespace store {

namespace {

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
  return cli::FormatUtc(time);
}

std::optional<Seconds> ParseTime(const std::string& text) {
  return cli::ParseUtc(text);
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
