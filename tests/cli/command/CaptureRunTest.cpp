// The command over every captured device list: what it prints and logs is what a script computed from the
// same text, and a good list leaves standard error empty.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/cli/support/XmlDocument.h"

using nlohmann::ordered_json;

namespace usbinfo_test {
namespace {

class CaptureRunTest : public testing::TestWithParam<std::string> {
 protected:
  CommandResult RunOnCapture(std::vector<std::string> options) const {
    const std::vector<std::string> common = {"--devices", CapturePath(GetParam()), "--as-is", "--system-name",
                                             "testhost"};
    options.insert(options.begin(), common.begin(), common.end());
    return RunUsbinfo(std::move(options));
  }
  /// How many instances there must be.
  static std::size_t InstanceCount() {
    const auto classes = ordered_json::parse(Expected(GetParam() + ".json"))["classes"];
    std::size_t count = 0;
    for (const auto& instances : classes) count += instances.size();
    return count;
  }
  static bool HasDevices() { return InstanceCount() != 0; }
  static int ExpectedStatus() { return HasDevices() ? 0 : 1; }
};

TEST_P(CaptureRunTest, PrintsTheDerivedInventoryByteForByte) {
  const CommandResult result = RunOnCapture({"--format", "json"});
  EXPECT_EQ(result.status, ExpectedStatus());
  EXPECT_EQ(result.output, Expected(GetParam() + ".json"));
}

TEST_P(CaptureRunTest, LogsTheDerivedLines) {
  const TemporaryFolder folder;
  const CommandResult result =
      RunOnCapture({"--log", folder.File("log"), "--log-level", "verbose", "--log-format", "json"});
  EXPECT_EQ(result.status, ExpectedStatus());
  const std::vector<std::string> lines = Lines(ReadFile(folder.File("log")));
  const std::vector<std::string> expected = Lines(Expected(GetParam() + ".log.jsonl"));
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t line = 0; line < lines.size(); ++line) {
    EXPECT_EQ(ordered_json::parse(lines[line]), ordered_json::parse(expected[line])) << "line " << line + 1;
  }
}

TEST_P(CaptureRunTest, KeepsStandardErrorForWhatGoesWrong) {
  for (const char* format : {"tree", "table", "json", "jsonl", "csv", "cimxml", "mof", "dot", "html", "list",
                             "usbguard", "prometheus"}) {
    const CommandResult result = RunOnCapture({"--format", format});
    EXPECT_EQ(Lines(result.errors).size(), HasDevices() ? 0U : 1U) << result.errors;
    EXPECT_EQ(result.status, ExpectedStatus());
  }
}

TEST_P(CaptureRunTest, PrintsAValidCimDocument) {
  const XmlDocument document(RunOnCapture({"--format", "cimxml"}).output);
  EXPECT_TRUE(document.IsValidCim());
  EXPECT_EQ(document.Count("//VALUE.NAMEDOBJECT"), InstanceCount());
}

TEST_P(CaptureRunTest, PrintsTheTreeByDefault) {
  const CommandResult result = RunOnCapture({});
  EXPECT_EQ(result.output, RunOnCapture({"--format", "tree"}).output);
  EXPECT_EQ(result.output.empty(), !HasDevices());
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureRunTest, testing::ValuesIn(CaptureNames()),
                         [](const auto& row) { return ToTestName(row.param); });

}  // namespace
}  // namespace usbinfo_test
