// A device list given by the user: it answers in place of the machine, for every path, and runs nothing.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/TOSSpecific.h"
#include "standin/GivenDeviceList.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/system/Processes.h"

namespace {

using NKESTA20::TOSSpecific;
using standin::GivenDeviceList;

const std::string kText("T:  Bus=01\n\n\0\xFF last", 19);

TEST(GivenDeviceList, SaysThatEveryFileExistsAndHoldsTheList) {
  GivenDeviceList list(kText);
  for (const char* path : {"/proc/bus/usb/devices", "/sys/kernel/debug/usb/devices", "/no/such/file", ""}) {
    EXPECT_TRUE(list.FileExists(path)) << path;
    EXPECT_EQ(list.CaptureFile(path), kText) << path;
    EXPECT_EQ(list.CaptureFile(path), kText) << path;
  }
}

TEST(GivenDeviceList, RunsNoCommand) {
  GivenDeviceList list(kText);
  const usbinfo_test::TemporaryFolder directory;
  const std::string trace = directory.File("trace");
  EXPECT_EQ(list.SpawnProcess("echo ran; touch " + trace, 300), "");
  EXPECT_NE(::access(trace.c_str(), F_OK), 0);
}

TEST(GivenDeviceList, MayBeEmpty) {
  GivenDeviceList list("");
  EXPECT_TRUE(list.FileExists("/proc/bus/usb/devices"));
  EXPECT_EQ(list.CaptureFile("/proc/bus/usb/devices"), "");
}

class GivenDeviceListTest : public usbinfo_test::HostTest {};

TEST_F(GivenDeviceListTest, ReplacesAllThreeServicesOfTheHost) {
  host.SetOperatingSystem(std::make_unique<GivenDeviceList>(kText));
  EXPECT_TRUE(TOSSpecific::FileExists("/no/such/file"));
  EXPECT_EQ(TOSSpecific::CaptureFile("/no/such/file"), kText);
  EXPECT_EQ(TOSSpecific::SpawnProcess("echo ran", 300), "");
  EXPECT_TRUE(calls.empty());
}

}  // namespace
