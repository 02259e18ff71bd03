// --log, --log-level and --log-format of the real command: where the plug-in's lines go, which ones, and how.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::ordered_json;

namespace usbinfo_test {
namespace {

const std::string kCapture = "vm-desktop-debugfs";

CommandResult RunWith(std::vector<std::string> options) {
  const std::vector<std::string> common = {"--devices", CapturePath(kCapture), "--as-is", "--system-name",
                                           "testhost"};
  options.insert(options.begin(), common.begin(), common.end());
  return RunUsbinfo(std::move(options));
}

std::vector<ordered_json> ParseLines(const std::string& text) {
  std::vector<ordered_json> lines;
  for (const std::string& line : Lines(text)) lines.push_back(ordered_json::parse(line));
  return lines;
}

/// The derived log lines of at most that severity number.
std::vector<ordered_json> ExpectedUpTo(int severity) {
  std::vector<ordered_json> lines;
  for (const ordered_json& line : ParseLines(Expected(kCapture + ".log.jsonl"))) {
    if (line["severity"] <= severity) lines.push_back(line);
  }
  return lines;
}

TEST(LogOptions, LetTheLevelAndGraverSeveritiesPass) {
  const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  for (int severity = 0; severity <= 4; ++severity) {
    const CommandResult result =
        RunWith({"--log-level", names[static_cast<std::size_t>(severity)], "--log-format", "json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(ParseLines(result.errors), ExpectedUpTo(severity)) << names[static_cast<std::size_t>(severity)];
  }
}

TEST(LogOptions, AreSilentByDefaultForAGoodList) {
  EXPECT_EQ(RunWith({}).errors, "");
  const TemporaryFolder folder;
  EXPECT_EQ(RunWith({"--log", folder.File("log")}).status, 0);
  EXPECT_EQ(ReadFile(folder.File("log")), "");
}

TEST(LogOptions, OverwriteNothingThatHasAnotherUse) {
  for (const char* option : {"--devices", "--mask-key", "--plugin", "--output"}) {
    const TemporaryFolder folder;
    const std::string file = folder.File("file", "text");
    const std::string log = folder.File(".") + "/file";
    const CommandResult result = RunUsbinfo({"--mask-serials", option, file, "--log", log});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, std::string("usbinfo: --log and ").append(option).append(" name one file, ") +
                                 log + "; name another one for --log\n");
    EXPECT_EQ(ReadFile(file), "text") << option;
  }
}

TEST(LogOptions, MakeNoFileThatTheOutputWouldReplace) {
  const TemporaryFolder folder;
  const std::string log = folder.File(".") + "/file";
  EXPECT_EQ(RunWith({"--log", log, "--output", folder.File("file")}).status, 2);
  EXPECT_THAT(folder.Names(), testing::IsEmpty());
}

TEST(LogOptions, DoNotEmptyTheListThatComesFromStandardInput) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", "text");
  const CommandResult result = Command({"--devices", "-", "--log", list}).InputFrom(list).Run();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(ReadFile(list), "text");
}

TEST(LogOptions, ShareATerminalWithTheOutput) {
  const std::vector<std::string> arguments = {"--devices",   CapturePath(kCapture), "--log",
                                              "/dev/stdout", "--log-level",         "verbose",
                                              "--output",    "/dev/stdout"};
  const CommandResult result = Command(arguments).OutputToTerminal(80).Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::HasSubstr("debug: "));
  EXPECT_THAT(result.output, testing::HasSubstr("usb1 "));
}

TEST(LogOptions, WriteTextWithTheSeverityByName) {
  const std::vector<std::string> lines = Lines(RunWith({"--log-level", "verbose"}).errors);
  const std::vector<ordered_json> expected = ExpectedUpTo(4);
  ASSERT_EQ(lines.size(), expected.size());
  const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  for (std::size_t line = 0; line < lines.size(); ++line) {
    std::string text = expected[line]["text"];
    if (text[0] == '\n') text.replace(0, 1, "\\n");
    EXPECT_EQ(lines[line], names.at(expected[line]["severity"]) + ": " + text);
  }
}

TEST(LogOptions, WriteToTheFileInsteadOfStandardError) {
  const TemporaryFolder folder;
  const CommandResult result = RunWith({"--log", folder.File("log"), "--log-level", "verbose"});
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(ReadFile(folder.File("log")), RunWith({"--log-level", "verbose"}).errors);
  EXPECT_EQ(result.output, RunWith({}).output);
}

TEST(LogOptions, KeepTheLinesOfARunWhoseOutputFails) {
  const TemporaryFolder folder;
  const CommandResult result = RunWith({"--log", folder.File("log"), "--log-level", "verbose", "--log-format",
                                        "json", "--output", folder.File("missing/out")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(ParseLines(ReadFile(folder.File("log"))), ExpectedUpTo(4));
}

TEST(LogOptions, KeepTheLinesOfARunThatFindsNothing) {
  const TemporaryFolder folder;
  const CommandResult result =
      RunWith({"--log", folder.File("log"), "--log-level", "debug", "--request", "nope"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(ReadFile(folder.File("log")),
            "debug: TUSBInfoCallbacks::Init - Initializing the plugin.\n"
            "debug: TUSBInfoCallbacks::GetData - Received request for class nope.\n"
            "debug: TUSBInfoCallbacks::GetData - Normal exit from plugin.\n"
            "debug: TUSBInfoCallbacks::DeInit - De-initializing the plugin.\n");
}

}  // namespace
}  // namespace usbinfo_test
