// A list of this machine that cannot be read is a failure and not a machine without USB. For each way in
// which reading can fail, and for cases that are not failures: what the command reports, and what happens to
// its output file.
#include <gmock/gmock.h>
#include <unistd.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/collect/AcquisitionWatch.h"
#include "host/TQSVException.h"
#include "standin/StatusCode.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::Acquisition;
using cli::AcquisitionWatch;
using cli::MachineFacts;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kSpawned = "usb-devices\necho \"usbinfo-exit-status $?\"";
const MachineFacts kMachineWithoutUsb = {false, MachineFacts::DebugfsList::kMissing, false, false};
const MachineFacts kUsb = {true, MachineFacts::DebugfsList::kForbidden, false, false};
const MachineFacts kUsbWithoutDevices = {true, MachineFacts::DebugfsList::kForbidden, true, true};

/// A machine whose answers the test chooses, observed by the watch.
class AcquisitionWatchTest : public testing::Test {
 protected:
  AcquisitionWatch Watch(bool noLimits = false) {
    auto fake = std::make_unique<FakeOperatingSystem>(&fCalls);
    machine = fake.get();
    return AcquisitionWatch(std::move(fake), acquisition, noLimits);
  }
  std::string Verdict(const MachineFacts& facts) const {
    return UserErrorOf([&] { cli::CheckAcquisition(*acquisition, facts); });
  }
  const std::vector<std::string>& Calls() const { return fCalls; }

  std::shared_ptr<Acquisition> acquisition = std::make_shared<Acquisition>();
  FakeOperatingSystem* machine = nullptr;

 private:
  std::vector<std::string> fCalls;
};

TEST_F(AcquisitionWatchTest, HandsOnFilesAndOutputAsTheyAre) {
  AcquisitionWatch watch = Watch();
  machine->files["file"] = "text";
  machine->outputs[kSpawned] = "usbinfo-exit-status 7\nlist\nusbinfo-exit-status 0\n";
  EXPECT_EQ(watch.CaptureFile("file"), "text");
  EXPECT_EQ(watch.SpawnProcess("usb-devices", 300), "usbinfo-exit-status 7\nlist\n");
  EXPECT_EQ(Verdict(kUsb), "");
}

TEST_F(AcquisitionWatchTest, FindsNoFailureWhereNothingWasAskedFor) {
  EXPECT_EQ(Verdict(kUsb), "");
  EXPECT_EQ(Verdict(kMachineWithoutUsb), "");
}

TEST_F(AcquisitionWatchTest, TakesAFailingCommandForAFailureWhereThereIsUsb) {
  AcquisitionWatch watch = Watch();
  machine->outputs[kSpawned] = "usbinfo-exit-status 3\n";
  EXPECT_EQ(watch.SpawnProcess("usb-devices", 300), "");
  EXPECT_EQ(Verdict(kUsb),
            "cannot list the USB devices of this machine: usb-devices failed with exit status 3; run it by "
            "itself to see why");
  EXPECT_EQ(Verdict(kMachineWithoutUsb), "");
  EXPECT_EQ(Verdict(kUsbWithoutDevices), "");
}

TEST_F(AcquisitionWatchTest, TakesAListThatBreaksOffForAFailureAnywhere) {
  AcquisitionWatch watch = Watch();
  machine->outputs[kSpawned] = "T:  Bus=01\nusbinfo-exit-status 1\n";
  watch.SpawnProcess("usb-devices", 300);
  for (const MachineFacts& facts : {kUsb, kMachineWithoutUsb, kUsbWithoutDevices}) {
    EXPECT_THAT(Verdict(facts), HasSubstr("usb-devices failed with exit status 1; "));
  }
}

TEST_F(AcquisitionWatchTest, SaysWhatIsMissingWhereThereIsNeitherPermissionNorTheCommand) {
  AcquisitionWatch watch = Watch();
  machine->outputs[kSpawned] = "usbinfo-exit-status 127\n";
  watch.SpawnProcess("usb-devices", 300);
  EXPECT_EQ(Verdict(kUsb),
            "cannot list the USB devices of this machine: no permission to read "
            "/sys/kernel/debug/usb/devices, and usb-devices is not installed; run as root, or install "
            "the package usbutils");
  EXPECT_EQ(Verdict(kMachineWithoutUsb), "");
}

TEST_F(AcquisitionWatchTest, TakesACommandThatWasStoppedForAFailureAnywhere) {
  AcquisitionWatch watch = Watch();
  machine->onCall = [](const std::string&) { standin::Throw(standin::StatusCode::kFailed); };
  EXPECT_THROW(watch.SpawnProcess("usb-devices", 300), NKESTA20::TQSVException);
  EXPECT_EQ(Verdict(kMachineWithoutUsb),
            "cannot list the USB devices of this machine: usb-devices was stopped: it did not end within "
            "300 seconds, or printed more than 256 MiB; run it by itself to see why");
}

TEST_F(AcquisitionWatchTest, TakesAShellThatWasKilledForAFailure) {
  AcquisitionWatch watch = Watch();
  machine->outputs[kSpawned] = "T:  Bus=01\n";
  watch.SpawnProcess("usb-devices", 300);
  EXPECT_THAT(Verdict(kMachineWithoutUsb),
              HasSubstr("the shell that runs usb-devices did not come to its end; "));
}

TEST_F(AcquisitionWatchTest, ForgivesAFileThatCannotBeReadOnlyWhereTheCommandHasAList) {
  AcquisitionWatch watch = Watch();
  EXPECT_THROW(watch.CaptureFile("/list"), NKESTA20::TQSVException);
  machine->outputs[kSpawned] = "T:  Bus=01\nusbinfo-exit-status 0\n";
  watch.SpawnProcess("usb-devices", 300);
  EXPECT_EQ(Verdict(kUsb), "");
  machine->outputs[kSpawned] = "usbinfo-exit-status 127\n";
  watch.SpawnProcess("usb-devices", 300);
  EXPECT_THAT(Verdict(kUsb),
              HasSubstr("/list cannot be read (CIM_ERR_NOT_FOUND), and usb-devices prints no list; "));
}

TEST_F(AcquisitionWatchTest, GivesThePluginNothingOfAListBeyondTheLimits) {
  std::string list;
  for (int hub = 0; hub < 300; ++hub) list += "T: Bus=1 Lev=1 Prnt=1 Port=1 Cnt=1 Dev#=1 Spd=1 MxCh=255\n";
  for (const bool noLimits : {false, true}) {
    AcquisitionWatch watch = Watch(noLimits);
    machine->files["file"] = list;
    EXPECT_EQ(watch.CaptureFile("file"), noLimits ? list : "");
    if (noLimits) continue;
    EXPECT_EQ(watch.SpawnProcess("usb-devices", 300), "");
    EXPECT_THAT(Calls(), testing::ElementsAre("capture file"));
    EXPECT_THAT(Verdict(kUsb), StartsWith("the list of this machine is too large: 76500 ports times 300 "));
  }
}

/// The whole command, run where /sys/bus/usb is and this machine's list is what `script` prints.
CommandResult RunWhereUsbIs(const TemporaryFolder& folder, const std::string& script,
                            std::vector<std::string> arguments) {
  folder.Script("usb-devices", script);
  arguments.insert(arguments.end(), {"--source", "plugin"});
  return Command(std::move(arguments))
      .AsOrdinaryUser()
      .Through({"/usr/bin/unshare", "--mount", "/bin/sh", "-c",
                "/bin/mount -t tmpfs none /sys && /bin/mkdir -p /sys/bus/usb && exec \"$@\"", "sh"})
      .Set("PATH", folder.Path())
      .Run();
}

TEST(FailedAcquisition, EndsWithTwoAndLeavesTheOldFile) {
  const TemporaryFolder folder;
  if (::geteuid() != 0 || Command({"--mount", "/bin/mount", "-t", "tmpfs", "none", "/sys"})
                                  .Program("/usr/bin/unshare")
                                  .Run()
                                  .status != 0) {
    GTEST_SKIP() << "no mount namespace to be had";
  }
  folder.ShareWithAll();
  const std::string output = folder.File("out", "old");
  const CommandResult result = RunWhereUsbIs(folder, "exit 3", {"--format", "json", "--output", output});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(
      result.errors,
      "usbinfo: cannot list the USB devices of this machine: usb-devices failed with exit status 3; run "
      "it by itself to see why\n");
  EXPECT_EQ(ReadFile(output), "old");
  const std::string print = "/bin/cat '" + CapturePath("vm-desktop-usb-devices") + "'";
  EXPECT_EQ(RunWhereUsbIs(folder, print, {}).status, 0);
  EXPECT_EQ(RunWhereUsbIs(folder, print + "; exit 1", {}).status, 2);
  EXPECT_EQ(RunWhereUsbIs(folder, "exit 0", {}).status, 1);
}

}  // namespace
}  // namespace usbinfo_test
