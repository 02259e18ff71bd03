// What fuzzing found worth keeping, and every capture or its inventory, through the fuzzers' targets: one
// test per input, so that a broken invariant names it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/DescriptorsTarget.h"
#include "tests/fuzz/DiffTarget.h"
#include "tests/fuzz/PluginTarget.h"
#include "tests/fuzz/RecordsTarget.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(SOURCE_DIR "/tests/" + folder))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

/// `inputs` and the files kept for a target.
std::vector<std::string> Inputs(std::vector<std::string> inputs, const std::string& target) {
  const std::vector<std::string> kept = FilesIn("fuzz/corpus/" + target);
  inputs.insert(inputs.end(), kept.begin(), kept.end());
  return inputs;
}

std::string TestName(const testing::TestParamInfo<std::string>& input) {
  return TestNameOf(input.param);
}

class RecordsReplay : public testing::TestWithParam<std::string> {};

TEST_P(RecordsReplay, AgreesWithTheSecondReading) {
  EXPECT_NO_THROW(CheckRecords(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, RecordsReplay, testing::ValuesIn(Inputs(CapturePaths(), "records")), TestName);

class PluginReplay : public testing::TestWithParam<std::string> {};

TEST_P(PluginReplay, IsReadBackFromEveryFormat) {
  EXPECT_NO_THROW(CheckPlugin(ReadFile(GetParam())));
}

TEST_P(PluginReplay, IsSavedWithWhatTheKernelKnowsAndReadAgain) {
  EXPECT_NO_THROW(CheckFacts(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, PluginReplay, testing::ValuesIn(Inputs(CapturePaths(), "plugin")), TestName);

class DiffReplay : public testing::TestWithParam<std::string> {};

TEST_P(DiffReplay, KeepsWhatEveryDifferenceMust) {
  EXPECT_NO_THROW(CheckDiff(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, DiffReplay, testing::ValuesIn(Inputs(FilesIn("data/expected"), "diff")),
                         TestName);

class DescriptorsReplay : public testing::TestWithParam<std::string> {};

TEST_P(DescriptorsReplay, AreListedAndReadBack) {
  EXPECT_NO_THROW(CheckDescriptors(ReadFile(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(All, DescriptorsReplay, testing::ValuesIn(Inputs({}, "descriptors")), TestName);

}  // namespace
}  // namespace usbinfo_test
