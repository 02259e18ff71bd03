// --output: the file gets what standard output would get, completely or not at all, and standard output stays
// empty.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

std::vector<std::string> Arguments(const std::string& format, const std::string& output = "") {
  std::vector<std::string> arguments = {"--devices", CapturePath("vm-desktop-debugfs"), "--format", format};
  if (!output.empty()) arguments.insert(arguments.end(), {"--output", output});
  return arguments;
}

TEST(OutputOption, WritesWhatStandardOutputWouldGet) {
  for (const char* format : {"tree", "table", "json", "jsonl", "cimxml", "mof", "dot", "html"}) {
    const TemporaryFolder folder;
    const CommandResult result = RunUsbinfo(Arguments(format, folder.File("out")));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(ReadFile(folder.File("out")), RunUsbinfo(Arguments(format)).output);
    EXPECT_THAT(folder.Names(), ElementsAre("out"));
  }
}

TEST(OutputOption, DoesNotFitTheFileToTheTerminal) {
  const TemporaryFolder folder;
  EXPECT_EQ(Command(Arguments("tree", folder.File("out"))).OutputToTerminal(40).Run().status, 0);
  EXPECT_EQ(ReadFile(folder.File("out")), RunUsbinfo(Arguments("tree")).output);
}

TEST(OutputOption, LeavesTheOldFileWhenThereIsNoRoomForTheNewOne) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  CommandResult result;
  {
    const FileSizeLimit limit(1000);
    result = RunUsbinfo(Arguments("json", path));
  }
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot write " + path + ": File too large"));
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(OutputOption, LeavesTheOldFileWhenTheInputCannotBeRead) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  EXPECT_EQ(RunUsbinfo({"--devices", folder.File("missing"), "--output", path}).status, 2);
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(OutputOption, LeavesTheOldFileWhenThePlugInCannotBeUsed) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  std::vector<std::string> arguments = Arguments("json", path);
  arguments.insert(arguments.end(), {"--plugin", folder.File("missing.so")});
  EXPECT_EQ(RunUsbinfo(arguments).status, 2);
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(OutputOption, MeansStandardOutputByADash) {
  std::vector<std::string> arguments = Arguments("tree", "-");
  EXPECT_EQ(RunUsbinfo(arguments).output, RunUsbinfo(Arguments("tree")).output);
  arguments.insert(arguments.end(), {"--color", "auto"});
  const auto toTerminal = [](const std::vector<std::string>& words) {
    return Command(words).Set("TERM", "xterm").OutputToTerminal(40).Run().output;
  };
  EXPECT_EQ(toTerminal(arguments), toTerminal(Arguments("tree")));
}

TEST(OutputOption, ReplacesNeitherListNorKeyNorPlugIn) {
  for (const char* option : {"--devices", "--mask-key", "--plugin"}) {
    const TemporaryFolder folder;
    const std::string path = folder.File("file", "old");
    const CommandResult result = RunUsbinfo({"--output", path, "--mask-serials", option, path});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, std::string("usbinfo: --output and ").append(option).append(" name one file, ") +
                                 path + "; name another one for --output\n");
    EXPECT_EQ(ReadFile(path), "old");
  }
}

TEST(OutputOption, GetsTheEmptyDocumentOfAnEmptyInventory) {
  for (const char* format : {"json", "jsonl", "cimxml", "mof", "dot", "html"}) {
    SCOPED_TRACE(format);
    const TemporaryFolder folder;
    const std::string path = folder.File("out", "old");
    const CommandResult result = Command({"--devices", "-", "--format", format, "--output", path}).Run();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("usbinfo: no USB device found: standard input lists none; "));
    EXPECT_EQ(ReadFile(path), Command({"--devices", "-", "--format", format}).Run().output);
  }
}

TEST(OutputOption, LeavesTheOldFileWhereThereIsNothingToShowToPeople) {
  for (const char* format : {"tree", "table"}) {
    const TemporaryFolder folder;
    const std::string path = folder.File("out", "old");
    EXPECT_EQ(Command({"--devices", "-", "--format", format, "--output", path}).Run().status, 1);
    EXPECT_EQ(ReadFile(path), "old");
  }
}

}  // namespace
}  // namespace usbinfo_test
