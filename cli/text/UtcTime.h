// Times as documents and messages have them.
#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace cli {

/// "2026-11-21T12:00:00Z" for a time in seconds since 1970, of the years 0 to 9999.
std::string FormatUtc(std::time_t time);

/// The time that FormatUtc gives `text` for; nothing for any other text, such as one with a day that the
/// month lacks.
std::optional<std::time_t> ParseUtc(const std::string& text);

}  // namespace cli
