// The fixture for all that runs on the stand-in host: a fresh host per test, its log recorded, its machine a
// fake that has no files and no output until a test sets them, `system` recorded among the machine's calls.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standin/Host.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/LogLine.h"

namespace usbinfo_test {

class HostTest : public ::testing::Test {
 protected:
  HostTest();
  ~HostTest() override;

  standin::Host& host = standin::Host::Instance();
  /// Every line written to the core logger.
  std::vector<LogLine> log;
  /// Every question to the machine, "system COMMAND" included.
  std::vector<std::string> calls;
  /// Owned by the host.
  FakeOperatingSystem* machine;
};

/// The whole of a file; fails the test when it cannot be read.
std::string ReadFile(const std::string& path);

/// The paths of the captured device lists, in order.
std::vector<std::string> CapturePaths();

/// A file's name, without its extension, in the letters that the name of a parametrised test may have.
std::string TestNameOf(const std::string& path);

}  // namespace usbinfo_test
