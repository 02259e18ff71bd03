#include "tests/support/LogLine.h"

#include <gtest/gtest.h>

namespace usbinfo_test {

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << line.severity << " " << ::testing::PrintToString(line.text);
}

}  // namespace usbinfo_test
