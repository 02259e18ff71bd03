// A line of the core logger, as the tests record and expect it, and the severities that the plug-in uses.
#pragma once

#include <ostream>
#include <string>
#include <tuple>

namespace usbinfo_test {

struct LogLine {
  int severity;
  std::string text;

  bool operator==(const LogLine& other) const { return severity == other.severity && text == other.text; }
  bool operator<(const LogLine& other) const {
    return std::tie(severity, text) < std::tie(other.severity, other.text);
  }
};

/// The severity's number and the text, quoted and with its control characters spelled.
std::ostream& operator<<(std::ostream& out, const LogLine& line);

constexpr int kStatus = 2;
constexpr int kDebug = 3;
constexpr int kVerbose = 4;

}  // namespace usbinfo_test
