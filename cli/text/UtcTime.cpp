#include "cli/text/UtcTime.h"

#include <array>

namespace cli {

std::string FormatUtc(std::time_t time) {
  std::tm utc{};
  ::gmtime_r(&time, &utc);
  std::array<char, sizeof "2026-11-21T12:00:00Z" + 8> text;
  return std::string(text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc));
}

}  // namespace cli
