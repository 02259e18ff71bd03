#include "cli/model/Speed.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace cli {

namespace {

constexpr std::uint64_t kMega = 1000000;
constexpr std::uint64_t kGiga = 1000 * kMega;

}  // namespace

std::string FormatSpeed(std::uint64_t bitsPerSecond) {
  if (bitsPerSecond == 0) return {};
  if (bitsPerSecond % kGiga == 0) return fmt::format("{} Gbit/s", bitsPerSecond / kGiga);
  return fmt::format("{} Mbit/s", bitsPerSecond / kMega);
}

std::string FormatSpeedClass(std::uint64_t number) {
  constexpr const char* kSpeeds[] = {"", "1.5 Mbit/s", "12 Mbit/s", "480 Mbit/s", "5+ Gbit/s"};
  return number < std::size(kSpeeds) ? kSpeeds[number] : "";
}

std::string FormatRate(double megabitsPerSecond) {
  if (!IsRate(megabitsPerSecond)) return {};
  const auto whole = static_cast<std::uint64_t>(megabitsPerSecond);
  return static_cast<double>(whole) == megabitsPerSecond ? FormatSpeed(whole * kMega) : "1.5 Mbit/s";
}

bool IsRate(double megabitsPerSecond) {
  constexpr double kLow = 1.5;
  const bool isWhole = megabitsPerSecond >= 1 && megabitsPerSecond <= kFastestRate &&
                       std::floor(megabitsPerSecond) == megabitsPerSecond;
  return isWhole || megabitsPerSecond == kLow;
}

}  // namespace cli
