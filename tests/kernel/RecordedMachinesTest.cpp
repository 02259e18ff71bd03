// The device list that is made of recorded sysfs trees is the one that the kernel itself had then; what the
// list does not show is read, too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "kernel/DeviceListWriter.h"
#include "kernel/SysfsReader.h"
#include "tests/kernel/RecordedMachine.h"

namespace {

using kernel::Device;
using kernel::Port;
using kernel::Topology;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The kernel's list as it is to be made: without bandwidth, and with the one string that has a line break in
/// one line.
std::string ExpectedList(const std::string& machine) {
  std::string list = usbinfo_test::ReadKernelList(machine);
  const std::string forger = "S:  Product=Forger\nS:";
  const std::size_t at = list.find(forger);
  if (at != std::string::npos) list.replace(at, forger.size(), "S:  Product=Forger\xef\xbf\xbdS:");
  return std::regex_replace(list, std::regex("\nB:[^\n]*"), "");
}

class RecordedMachine : public ::testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(All, RecordedMachine, ::testing::ValuesIn(usbinfo_test::RecordedMachines()),
                         [](const auto& each) {
                           return std::regex_replace(each.param, std::regex("\\W"), "_");
                         });

TEST_P(RecordedMachine, HasTheKernelsOwnDeviceList) {
  const Topology topology = usbinfo_test::UnpackedSysfs(usbinfo_test::ReadRecord(GetParam())).Read();
  EXPECT_THAT(topology.unreadable, IsEmpty());
  EXPECT_EQ(kernel::WriteDeviceList(topology), ExpectedList(GetParam()));
}

class Reading : public ::testing::Test {
 protected:
  void Read(const std::string& machine) {
    fTopology = usbinfo_test::UnpackedSysfs(usbinfo_test::ReadRecord(machine)).Read();
  }
  const Device& DeviceOf(const std::string& name) const {
    for (const Device& device : fTopology.devices) {
      if (device.name == name) return device;
    }
    throw std::out_of_range(name);
  }
  const Port& PortOf(const std::string& name) const {
    for (const Port& port : fTopology.ports) {
      if (port.name == name) return port;
    }
    throw std::out_of_range(name);
  }

  Topology fTopology;
};

TEST_F(Reading, FindsTheNodesOfDevicesAndTheirDrivers) {
  Read("superspeed-gadgets");
  EXPECT_THAT(DeviceOf("usb1").nodes, ElementsAre("/dev/bus/usb/001/001"));
  EXPECT_THAT(DeviceOf("1-11").nodes,
              ElementsAre("/dev/bus/usb/001/003", "/dev/hidraw4", "/dev/input/event5", "/dev/input/mouse3"));
  EXPECT_THAT(DeviceOf("5-5").nodes, ElementsAre("/dev/bus/usb/005/002", "/dev/bsg/0:0:0:0", "/dev/sda"));
}

TEST_F(Reading, KnowsPeersOfPortsAndWhatIsPluggedIn) {
  Read("machine");
  const Port used{"usb2-port1", "usb2", 1, "unknown", "usb1-port1", "2-1"};
  EXPECT_EQ(PortOf("usb2-port1"), used);
  const Port free{"1-2.3-port7", "1-2.3", 7, "unknown", "", ""};
  EXPECT_EQ(PortOf("1-2.3-port7"), free);
  EXPECT_EQ(PortOf("1-2.3-port8").device, "1-2.3.8");
}

TEST_F(Reading, TakesTheKernelsWordForHowAPortIsConnected) {
  auto record = usbinfo_test::ReadRecord("machine");
  for (auto& [path, file] : record) {
    if (path.ends_with("usb1-port3/connect_type")) file.text = "not used\n";
    if (path.ends_with("usb1-port4/connect_type")) file.text = "hardwired\n";
  }
  fTopology = usbinfo_test::UnpackedSysfs(record).Read();
  EXPECT_EQ(PortOf("usb1-port3").connectType, "not used");
  EXPECT_EQ(PortOf("usb1-port4").connectType, "hardwired");
}

TEST_F(Reading, ReadsNeitherPortsNorNodesWhereTheyAreNotWanted) {
  const usbinfo_test::UnpackedSysfs sysfs(usbinfo_test::ReadRecord("machine"));
  const Topology topology = kernel::ReadSysfs(sysfs.Root(), {.nodes = false, .ports = false});
  EXPECT_THAT(topology.ports, IsEmpty());
  EXPECT_THAT(topology.devices.front().nodes, IsEmpty());
  EXPECT_EQ(kernel::WriteDeviceList(topology), ExpectedList("machine"));
}

TEST_F(Reading, KnowsWhichDevicesAreAuthorized) {
  Read("off");
  EXPECT_EQ(DeviceOf("1-11").isAuthorized, false);
  EXPECT_EQ(DeviceOf("1-11").ActiveConfiguration(), nullptr);
  EXPECT_EQ(DeviceOf("1-2.4").isAuthorized, true);
  EXPECT_EQ(DeviceOf("1-2.4").ActiveConfiguration(), nullptr);
  EXPECT_EQ(DeviceOf("1-2").isAuthorized, true);
}

TEST_F(Reading, KeepsStringsAsTheKernelHasThem) {
  Read("off");
  std::vector<std::string> products;
  for (const Device& device : fTopology.devices) products.push_back(device.product.value_or("none"));
  EXPECT_THAT(products, ::testing::IsSupersetOf({"Forger\nS:  SerialNumber=forged", "Мышь 鼠标", "none"}));
}

TEST_F(Reading, KnowsTheTrueSpeedWhereTheKernelsListDoesNot) {
  auto record = usbinfo_test::ReadRecord("machine");
  for (auto& [path, file] : record) {
    if (path.ends_with("/2-1/speed")) file.text = "20000\n";
    if (path.ends_with("/7-4/7-4.7/speed")) file.text = "1.5\n";
  }
  fTopology = usbinfo_test::UnpackedSysfs(record).Read();
  EXPECT_EQ(DeviceOf("2-1").megabitsPerSecond, 20000);
  EXPECT_EQ(DeviceOf("7-4.7").megabitsPerSecond, 1.5);
  const std::string list = kernel::WriteDeviceList(fTopology);
  EXPECT_THAT(list, ::testing::HasSubstr("Dev#=  2 Spd=10000 MxCh= 0\n"));
  EXPECT_THAT(list, ::testing::HasSubstr("Spd=1.5  MxCh= 0\n"));
}

TEST(SysfsReader, FindsNoDevicesWhereThereIsNoFolderOfThem) {
  const Topology topology = kernel::ReadSysfs("/nonexistent/bus/usb/devices");
  EXPECT_THAT(topology.devices, IsEmpty());
  EXPECT_THAT(topology.unreadable, IsEmpty());
}

TEST(SysfsReader, ThrowsWhereTheFolderCannotBeRead) {
  EXPECT_THROW(kernel::ReadSysfs("/dev/null"), std::system_error);
}

}  // namespace
