// Whether the command touches the machine: never when a list is given; without one it prints an inventory or
// an error. Commands on a search path of the test leave a trace when they are run; root never runs them.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using testing::IsEmpty;

namespace usbinfo_test {
namespace {

class MachineAccessTest : public testing::Test {
 protected:
  MachineAccessTest() {
    fTraces.ShareWithAll();
    for (const std::string name : {"mount", "umount", "usb-devices"}) {
      fCommands.Script(name, "echo run >> '" + fTraces.File(name) + "'");
    }
  }

  CommandResult RunTraced(std::vector<std::string> arguments, const std::string& input = "") const {
    return Command(std::move(arguments)).AsOrdinaryUser().Input(input).Set("PATH", fCommands.Path()).Run();
  }
  /// The commands that were run.
  std::vector<std::string> Traces() const { return fTraces.Names(); }
  const TemporaryFolder& Commands() const { return fCommands; }

 private:
  TemporaryFolder fCommands;
  TemporaryFolder fTraces;
};

TEST_F(MachineAccessTest, TracesACommandThatIsRun) {
  const CommandResult shell =
      Command({"-c", "mount -t usbfs; usb-devices"}).Program("/bin/sh").Set("PATH", Commands().Path()).Run();
  EXPECT_EQ(shell.status, 0);
  EXPECT_THAT(Traces(), testing::ElementsAre("mount", "usb-devices"));
}

TEST_F(MachineAccessTest, RunsNothingWithAListGiven) {
  for (const std::string& path : CapturePaths()) RunTraced({"--devices", path});
  EXPECT_THAT(Traces(), IsEmpty());
}

TEST_F(MachineAccessTest, RunsNothingWithAnEmptyListGiven) {
  EXPECT_EQ(RunTraced({"--devices", "/dev/null"}).status, 1);
  EXPECT_EQ(RunTraced({"--devices", "-"}).status, 1);
  EXPECT_EQ(RunTraced({"--devices", "-"}, "\n").status, 1);
  EXPECT_EQ(RunTraced({"--devices", "-", "--request", "KALDO_USBHub,KALDO_USBPort,KALDO_USBHub"}).status, 1);
  EXPECT_THAT(Traces(), IsEmpty());
}

TEST_F(MachineAccessTest, NeedsNoCommandWithAListGiven) {
  const TemporaryFolder empty;
  const std::string name = "vm-desktop-debugfs";
  const CommandResult result =
      Command({"--devices", CapturePath(name), "--system-name", "testhost", "--format", "json"})
          .Set("PATH", empty.Path())
          .Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, Expected(name + ".json"));
}

TEST_F(MachineAccessTest, RunsNothingForHelpVersionOrWrongUsage) {
  RunTraced({"--help"});
  RunTraced({"--version"});
  RunTraced({"--bogus"});
  EXPECT_THAT(Traces(), IsEmpty());
}

TEST_F(MachineAccessTest, RunsNothingForARequestThatNeedsNoDeviceList) {
  EXPECT_EQ(RunTraced({"--request", "KALDO_USBPortOnHub,KALDO_USBConnection,nope"}).status, 1);
  EXPECT_THAT(Traces(), IsEmpty());
}

TEST_F(MachineAccessTest, RunsTheCommandsOfTheSearchPathForAnOrdinaryUser) {
  if (::access("/proc/bus/usb/devices", F_OK) == 0) GTEST_SKIP() << "this machine has a list of usbfs";
  RunTraced({"--source", "plugin"});
  EXPECT_THAT(Traces(), testing::Contains("mount"));
}

TEST_F(MachineAccessTest, RunsNoCommandThatTheCallerOfRootChose) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can try";
  Command({"--source", "plugin"}).Set("PATH", Commands().Path()).Run();
  EXPECT_THAT(Traces(), IsEmpty());
}

TEST_F(MachineAccessTest, ShowsThisMachineOrSaysWhyItCannot) {
  const CommandResult result = RunTraced({});
  if (result.status == 0) {
    EXPECT_NE(result.output, "");
    EXPECT_EQ(result.errors, "");
    return;
  }
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, testing::StartsWith("usbinfo: no USB device found: "));
  EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
}

}  // namespace
}  // namespace usbinfo_test
