// Short ways to write down what the core logger must have got.
#pragma once

#include <string>
#include <vector>

#include "tests/support/HostTest.h"

namespace usbinfo_test {

using Log = std::vector<LogLine>;

inline LogLine Status(const std::string& text) {
  return {kStatus, text};
}

inline LogLine Debug(const std::string& text) {
  return {kDebug, text};
}

inline LogLine Verbose(const std::string& text) {
  return {kVerbose, text};
}

}  // namespace usbinfo_test
