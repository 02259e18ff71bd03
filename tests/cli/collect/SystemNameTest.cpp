// The name of the system that a list describes, from the list's path.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/collect/SystemName.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::SystemNameOfList;
using nlohmann::json;

namespace usbinfo_test {
namespace {

TEST(SystemNameOfList, IsTheFilesNameWithoutTheSuffixesOfLists) {
  EXPECT_EQ(SystemNameOfList("server1.txt"), "server1");
  EXPECT_EQ(SystemNameOfList("/srv/lists/server1.example.org.list"), "server1.example.org");
  EXPECT_EQ(SystemNameOfList("../server1.log"), "server1");
  EXPECT_EQ(SystemNameOfList("server1.txt.log"), "server1.txt");
  EXPECT_EQ(SystemNameOfList("server1.example.org"), "server1.example.org");
  EXPECT_EQ(SystemNameOfList("server1.TXT"), "server1.TXT");
  EXPECT_EQ(SystemNameOfList(".txt"), ".txt");
  EXPECT_EQ(SystemNameOfList("/dev/shm/server1.txt"), "server1");
  EXPECT_EQ(SystemNameOfList("dev/fd"), "fd");
  EXPECT_EQ(SystemNameOfList("/proc/1/root/srv/fd/3"), "3");
}

TEST(SystemNameOfList, IsThisMachinesForTheKernelsOwnFiles) {
  EXPECT_EQ(SystemNameOfList("/sys/kernel/debug/usb/devices"), "");
  EXPECT_EQ(SystemNameOfList("/proc/bus/usb/devices"), "");
  EXPECT_EQ(SystemNameOfList("/sys/kernel/../kernel/debug//usb/devices"), "");
  EXPECT_EQ(SystemNameOfList("/mnt/sys/kernel/debug/usb/devices"), "devices");
}

TEST(SystemNameOfList, IsUnknownForWhatHasNoNameOfItsOwn) {
  for (const char* path :
       {"-", "/dev/stdin", "/dev/fd/3", "/dev/null", "/proc/self/fd/0", "/proc/123/fd/45"}) {
    EXPECT_EQ(SystemNameOfList(path), std::nullopt) << path;
  }
}

constexpr const char* kHint =
    "usbinfo: nothing says which system the list from standard input is of, so its name is \"unknown\"; give "
    "its name "
    "with --system-name NAME\n";

TEST(DeviceListsSystem, IsNamedInEveryKeyAndHintedAtWhereUnknown) {
  const std::string list = ReadFile(CapturePath("proc-manufacturer-keyword"));
  const TemporaryFolder folder;
  const auto nameIn = [](const CommandResult& result) {
    const json document = json::parse(result.output);
    EXPECT_EQ(document["classes"]["KALDO_USBDevice"][0]["SystemName"], document["system"]["name"]);
    return document["system"]["name"].get<std::string>();
  };
  const CommandResult named = RunUsbinfo({"--devices", folder.File("lab-7.txt", list), "-j"});
  EXPECT_EQ(nameIn(named), "lab-7");
  EXPECT_EQ(named.errors, "");
  const CommandResult unknown = Command({"--devices", "-", "-j"}).Input(list).Run();
  EXPECT_EQ(nameIn(unknown), "unknown");
  EXPECT_EQ(unknown.errors, kHint);
  const CommandResult overridden =
      Command({"--devices", "-", "-j", "--system-name", "lab-8"}).Input(list).Run();
  EXPECT_EQ(nameIn(overridden), "lab-8");
  EXPECT_EQ(overridden.errors, "");
}

TEST(DeviceListsSystem, IsTheSameInADifference) {
  const TemporaryFolder folder;
  const std::string list = ReadFile(CapturePath("proc-manufacturer-keyword"));
  const CommandResult result =
      Command({"diff", folder.File("monday.txt", list), "-", "--format", "json"}).Input(list).Run();
  const json document = json::parse(result.output);
  EXPECT_EQ(document["old"]["system"], "monday");
  EXPECT_EQ(document["new"]["system"], "unknown");
  EXPECT_EQ(result.errors, kHint);
}

}  // namespace
}  // namespace usbinfo_test
