// What ends the command with exit status 2 other than wrong usage: unreadable input, no plug-in, failed
// output. One line on standard error says what, where and what to do about it.
#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using testing::StartsWith;

namespace usbinfo_test {
namespace {

std::string SomeCapture() {
  return CapturePath("vm-desktop-debugfs");
}

/// The options with which the command fails with `message`; "@" stands for a folder of the test.
struct Failure {
  const char* name;
  std::vector<std::string> arguments;
  std::string message;
};

std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << failure.name;
}

const Failure kFailures[] = {
    {"MissingDeviceList", {"--devices", "@/missing"}, "cannot read @/missing: No such file or directory"},
    {"FolderAsDeviceList", {"--devices", "@"}, "cannot read @: Is a directory"},
    {"FileAsFolderOfDeviceList", {"--devices", "@/text/list"}, "cannot read @/text/list: Not a directory"},
    {"MissingKey",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "@/missing"},
     "cannot read the key in @/missing: No such file or directory"},
    {"FolderAsKey",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "@"},
     "cannot read the key in @: Is a directory"},
    {"EmptyKey",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "/dev/null"},
     "the key in /dev/null has 0 bytes, but needs at least 16"},
    {"EmptyKeyOnStandardInput",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "-"},
     "the key in standard input has 0 bytes, but needs at least 16"},
    {"EndlessKey",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "/dev/zero"},
     "the key in /dev/zero has more than 1 MiB"},
    {"ShortKey",
     {"--devices", SomeCapture(), "--mask-serials", "--mask-key", "@/text"},
     "the key in @/text has 5 bytes, but needs at least 16"},
    {"ListAndKeyOnStandardInput",
     {"--devices", "-", "--mask-serials", "--mask-key", "-"},
     "--devices and --mask-key cannot both be standard input"},
    {"MissingPlugin",
     {"--devices", SomeCapture(), "--plugin", "@/missing.so"},
     "cannot use the plug-in: @/missing.so: cannot open shared object file: No such file or directory"},
    {"TextAsPlugin",
     {"--devices", SomeCapture(), "--plugin", "@/text"},
     "cannot use the plug-in: @/text: file too short"},
    {"FolderAsPlugin",
     {"--devices", SomeCapture(), "--plugin", "@"},
     "cannot use the plug-in: @: cannot read file data: Is a directory"},
    {"ModuleWithoutPlugin",
     {"--devices", SomeCapture(), "--plugin", FAKE_UDEV},
     "cannot use the plug-in: " FAKE_UDEV ": the module registers no plug-in that answers queries"},
    {"MissingFolderOfOutput",
     {"--devices", SomeCapture(), "--output", "@/missing/out"},
     "cannot write @/missing/out: No such file or directory"},
    {"FolderAsOutput", {"--devices", SomeCapture(), "--output", "@"}, "cannot write @: Is a directory"},
    {"MissingFolderOfLog",
     {"--devices", SomeCapture(), "--log", "@/missing/log"},
     "cannot write the log @/missing/log: No such file or directory"},
    {"FolderAsLog", {"--devices", SomeCapture(), "--log", "@"}, "cannot write the log @: Is a directory"},
};

std::string Replace(std::string text, const std::string& folder) {
  for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos; at += folder.size()) {
    text.replace(at, 1, folder);
  }
  return text;
}

class FailureTest : public testing::TestWithParam<Failure> {
 protected:
  FailureTest() {
    std::filesystem::permissions(fFolder.File("text", "text\n"), std::filesystem::perms{0600});
  }

  std::string InFolder(const std::string& text) const { return Replace(text, fFolder.Path()); }
  CommandResult RunInFolder() const {
    std::vector<std::string> arguments;
    for (const std::string& argument : GetParam().arguments) arguments.push_back(InFolder(argument));
    return RunUsbinfo(std::move(arguments));
  }
  std::vector<std::string> Names() const { return fFolder.Names(); }

 private:
  TemporaryFolder fFolder;
};

TEST_P(FailureTest, SaysWhatAndWhereInOneLine) {
  const CommandResult result = RunInFolder();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: " + InFolder(GetParam().message)));
  EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
}

TEST_P(FailureTest, SaysWhatToDoAboutIt) {
  const std::string line = RunInFolder().errors;
  const std::string known = "usbinfo: " + InFolder(GetParam().message);
  EXPECT_THAT(line.substr(std::min(known.size(), line.size())), testing::MatchesRegex("; [^\n]+\n")) << line;
}

TEST_P(FailureTest, LeavesNothingBehind) {
  RunInFolder();
  EXPECT_THAT(Names(), testing::ElementsAre("text"));
}

INSTANTIATE_TEST_SUITE_P(Failures, FailureTest, testing::ValuesIn(kFailures),
                         [](const auto& row) { return std::string(row.param.name); });

/// The last line that the command prints when the plug-in throws what `request` names; the one before it says
/// that the schema has no such class.
std::string ErrorsOfThrowingPlugin(const std::string& request) {
  const CommandResult result = RunUsbinfo({"--plugin", THROWING_MODULE, "--request", request});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  const std::vector<std::string> lines = Lines(result.errors);
  EXPECT_EQ(lines.size(), 2U);
  return lines.back() + "\n";
}

TEST(FailingPlugin, IsNamedWithWhatItThrows) {
  EXPECT_EQ(ErrorsOfThrowingPlugin("exception"),
            "usbinfo: the plug-in " THROWING_MODULE " failed: no luck; name another with --plugin FILE\n");
  EXPECT_EQ(ErrorsOfThrowingPlugin("number"),
            "usbinfo: the plug-in " THROWING_MODULE " failed; name another with --plugin FILE\n");
}

TEST(FailingPlugin, IsNotBlamedForALackOfMemory) {
  EXPECT_EQ(ErrorsOfThrowingPlugin("lack of memory"), "usbinfo: out of memory\n");
}

CommandResult RunInto(const std::function<void(Command&)>& place, std::vector<std::string> arguments) {
  Command command(std::move(arguments));
  place(command);
  return command.Run();
}

TEST(UnreadableInput, NamesStandardInput) {
  const CommandResult result = Command({"--devices", "-"}).InputFrom("/").Run();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot read standard input: Is a directory; "));
  EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
}

TEST(FailedOutput, IsReportedForAFullDevice) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--devices", SomeCapture()}, {"--help"}, {"--version"}}) {
    const CommandResult result = RunInto([](Command& command) { command.OutputTo("/dev/full"); }, arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot write standard output: No space left on device"));
    EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
  }
}

TEST(ClosedPipe, EndsTheCommandAsItEndsOthersAndQuietly) {
  const TemporaryFolder folder;
  std::vector<std::vector<std::string>> runs = {{"--help"}, {"--version"}, {"schema"}};
  for (const char* format : {"tree", "table", "json", "jsonl", "cimxml", "mof", "dot", "html"}) {
    runs.push_back({"--devices", SomeCapture(), "--format", format});
  }
  for (const char* output : {"-", "/dev/stdout", "/dev/fd/1"}) {
    runs.push_back({"--devices", SomeCapture(), "--output", output, "--log", folder.File("log")});
  }
  for (const std::vector<std::string>& arguments : runs) {
    const CommandResult result = RunInto([](Command& command) { command.OutputToClosedPipe(); }, arguments);
    EXPECT_EQ(result.status, -SIGPIPE);
    EXPECT_EQ(result.errors, "");
  }
}

TEST(ClosedPipe, LeavesAWholeLog) {
  const TemporaryFolder folder;
  const std::vector<std::string> arguments = {"--devices",        SomeCapture(), "--log",
                                              folder.File("log"), "--log-level", "verbose"};
  RunInto([](Command& command) { command.OutputToClosedPipe(); }, arguments);
  const std::string log = ReadFile(folder.File("log"));
  RunUsbinfo(arguments);
  EXPECT_EQ(log, ReadFile(folder.File("log")));
}

TEST(FailedOutput, IsReportedForAClosedStandardOutput) {
  const CommandResult result =
      RunInto([](Command& command) { command.CloseOutput(); }, {"--devices", SomeCapture()});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot write standard output: Bad file descriptor"));
}

TEST(FailedOutput, NeverGoesIntoTheLogInsteadOfAClosedStandardOutput) {
  const TemporaryFolder folder;
  const CommandResult result =
      RunInto([](Command& command) { command.CloseOutput(); },
              {"--devices", SomeCapture(), "--log", folder.File("log"), "--log-level", "error"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(ReadFile(folder.File("log")), "");
}

TEST(FailedOutput, NeverPutsAMessageIntoTheLogInsteadOfAClosedStandardError) {
  const TemporaryFolder folder;
  const CommandResult result =
      Command({"--devices", "/dev/null", "--log", folder.File("log"), "--log-level", "error"})
          .CloseErrors()
          .Run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(ReadFile(folder.File("log")), "");
}

TEST(FailedOutput, IsReportedForALogThatLostLines) {
  const TemporaryFolder folder;
  const std::string log = folder.File("log");
  CommandResult result;
  {
    const FileSizeLimit limit(10000);
    result = RunUsbinfo({"--devices", SomeCapture(), "--log", log, "--log-level", "verbose"});
  }
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, RunUsbinfo({"--devices", SomeCapture()}).output);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot write the log " + log + ": File too large; "));
  EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
}

TEST(FailedOutput, OfANoisyLogDoesNotTakeThePlaceOfTheData) {
  const CommandResult result = RunUsbinfo({"--devices", SomeCapture(), "--log-level", "verbose"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, RunUsbinfo({"--devices", SomeCapture()}).output);
}

}  // namespace
}  // namespace usbinfo_test
