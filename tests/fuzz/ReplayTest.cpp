// What fuzzing found worth keeping, and every capture, through the fuzzers' targets: one test per input, so
// that a broken invariant names it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/PluginTarget.h"
#include "tests/fuzz/RecordsTarget.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;

/// The captures and the files kept for a target.
std::vector<std::string> Inputs(const std::string& target) {
  std::vector<std::string> kept;
  for (const auto& entry : fs::directory_iterator(SOURCE_DIR "/tests/fuzz/corpus/" + target)) {
    kept.push_back(entry.path());
  }
  std::sort(kept.begin(), kept.end());
  std::vector<std::string> inputs = CapturePaths();
  inputs.insert(inputs.end(), kept.begin(), kept.end());
  return inputs;
}

std::string TestName(const testing::TestParamInfo<std::string>& input) {
  std::string name = fs::path(input.param).filename();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
  return name;
}

class RecordsReplay : public testing::TestWithParam<std::string> {};

TEST_P(RecordsReplay, AgreesWithTheSecondReading) {
  EXPECT_NO_THROW(CheckRecords(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, RecordsReplay, testing::ValuesIn(Inputs("records")), TestName);

class PluginReplay : public testing::TestWithParam<std::string> {};

TEST_P(PluginReplay, IsReadBackFromEveryFormat) {
  EXPECT_NO_THROW(CheckPlugin(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, PluginReplay, testing::ValuesIn(Inputs("plugin")), TestName);

}  // namespace
}  // namespace usbinfo_test
