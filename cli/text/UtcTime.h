// Times as documents and messages have them.
#pragma once

#include <ctime>
#include <string>

namespace cli {

/// "2026-11-21T12:00:00Z" for a time in seconds since 1970.
std::string FormatUtc(std::time_t time);

}  // namespace cli
