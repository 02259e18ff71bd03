// What records a device list as text gives.
#include <gmock/gmock.h>

#include "kernel/DeviceListReader.h"
#include "tests/support/HostTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

using kernel::Device;
using kernel::Topology;

Topology ReadCaptured(const std::string& name) {
  return kernel::ReadDeviceList(ReadFile(std::string(TEST_DATA_DIR "/captures/") + name + ".txt"));
}

std::vector<std::string> NamesOf(const Topology& topology) {
  std::vector<std::string> names;
  for (const Device& device : topology.devices) names.push_back(device.name);
  return names;
}

TEST(DeviceListReader, ReadsEveryFieldOfARecord) {
  const Topology topology = kernel::ReadDeviceList(
      "T:  Bus=03 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\n\n"
      "T:  Bus=03 Lev=01 Prnt=01 Port=01 Cnt=02 Dev#= 17 Spd=1.5  MxCh= 0\n"
      "D:  Ver= 2.10 Cls=ef(misc ) Sub=02 Prot=01 MxPS=64 #Cfgs=  2\n"
      "P:  Vendor=046d ProdID=c31c Rev=64.02\n"
      "S:  Manufacturer= Acme  \n"
      "S:  Product=A=b Driver=c\n"
      "S:  SerialNumber=\n"
      "C:  #Ifs= 1 Cfg#= 1 Atr=80 MxPwr=  2mA\n"
      "I:  If#= 0 Alt= 0 #EPs= 0 Cls=ff(vend.) Sub=ff Prot=fe Driver=\n"
      "C:* #Ifs= 1 Cfg#= 2 Atr=a0 MxPwr=500mA\n"
      "A:  FirstIf#= 0 IfCount= 2 Cls=01(audio) Sub=02 Prot=03\n"
      "I:  If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=02 Driver=usbhid\n"
      "E:  Ad=81(I) Atr=03(Int.) MxPS=   8 Ivl=10ms\n"
      "I:* If#= 0 Alt= 1 #EPs= 2 Cls=03(HID  ) Sub=00 Prot=00 Driver=usbhid\n"
      "E:  Ad=81(I) Atr=03(Int.) MxPS=1024 Ivl=125us\n"
      "E:  Ad=02(O) Atr=02(Bulk) MxPS=  64 Ivl=0ms\n"
      "I:* If#= 1 Alt= 0 #EPs= 0 Cls=0a(data ) Sub=00 Prot=00 Driver=(none)\n");
  Device expected;
  expected.name = "3-2";
  expected.bus = 3;
  expected.number = 17;
  expected.level = 1;
  expected.parentNumber = 1;
  expected.port = 2;
  expected.count = 2;
  expected.speed = kernel::Speed::kLow;
  expected.megabitsPerSecond = 1.5;
  expected.descriptor = {0x0210, {0xEF, 2, 1}, 64, 2, 0x046D, 0xC31C, 0x6402};
  expected.manufacturer = " Acme  ";
  expected.product = "A=b Driver=c";
  expected.serial = "";
  expected.configurations = {{1, 0x80, 2, false, {}, {{0, "", {{0, false, {0xFF, 0xFF, 0xFE}, {}}}}}},
                             {2,
                              0xA0,
                              500,
                              true,
                              {{0, 2, {1, 2, 3}}},
                              {{0,
                                "usbhid",
                                {{0, false, {3, 1, 2}, {{0x81, 3, 8, 10000}}},
                                 {1, true, {3, 0, 0}, {{0x81, 3, 1024, 125}, {0x02, 2, 64, 0}}}}},
                               {1, "", {{0, true, {0x0A, 0, 0}, {}}}}}}};
  EXPECT_THAT(topology.devices, ElementsAre(testing::_, expected));
  EXPECT_THAT(topology.ports, ElementsAre(kernel::Port{"usb3-port1", "usb3", 1, "", "", ""},
                                          kernel::Port{"usb3-port2", "usb3", 2, "", "", "3-2"}));
}

TEST(DeviceListReader, NamesDevicesAsTheKernelDoes) {
  EXPECT_THAT(
      NamesOf(ReadCaptured("vm-desktop-debugfs")),
      ElementsAre("usb1", "1-3", "1-3.1", "1-3.2", "1-4", "usb2", "2-1", "2-2", "usb3", "usb4", "4-1"));
}

TEST(DeviceListReader, NamesNoDeviceWhoseParentsDoNotLeadToARootHub) {
  const Topology topology = kernel::ReadDeviceList(
      "T:  Bus=01 Lev=02 Prnt=07 Port=00 Dev#=  2 MxCh= 4\n\nT:  Bus=01 Lev=01 Prnt=02 Dev#=  3\n");
  EXPECT_THAT(NamesOf(topology), ElementsAre("", ""));
  EXPECT_THAT(topology.ports, IsEmpty());
}

TEST(DeviceListReader, TakesAllForActiveWhereNothingIsMarked) {
  const Topology topology = kernel::ReadDeviceList(
      "T:  Bus=01\nC:  #Ifs= 1 Cfg#= 1\nI:  If#=0xa Alt= 0\n\nT:  Bus=01\nC:  #Ifs= 0 Cfg#= 0\n");
  const kernel::Configuration& configuration = topology.devices.at(0).configurations.at(0);
  EXPECT_TRUE(configuration.isActive);
  EXPECT_EQ(10, configuration.interfaces.at(0).number);
  EXPECT_TRUE(configuration.interfaces.at(0).settings.at(0).isActive);
  EXPECT_FALSE(topology.devices.at(1).configurations.at(0).isActive);
}

TEST(DeviceListReader, TakesTheFirstSettingForActiveWhereOnlyConfigurationsAreMarked) {
  const Topology topology =
      kernel::ReadDeviceList("T:  Bus=01\nC:* #Ifs= 1 Cfg#= 1\nI:  If#= 0 Alt= 0\nI:  If#= 0 Alt= 1\n");
  const auto& settings = topology.devices.at(0).configurations.at(0).interfaces.at(0).settings;
  EXPECT_TRUE(settings.at(0).isActive);
  EXPECT_FALSE(settings.at(1).isActive);
}

TEST(DeviceListReader, TakesTheFirstOfWhatAStringForges) {
  const Topology topology = kernel::ReadDeviceList(
      "T:  Bus=01 Dev#=  9\nP:  Vendor=1111 ProdID=2222\nS:  Product=a\nT:  Bus=02 Dev#=  1\nP:  "
      "Vendor=3333\n"
      "S:  Product=b\n");
  const Device& device = topology.devices.at(0);
  EXPECT_EQ(1U, device.bus);
  EXPECT_EQ(9U, device.number);
  EXPECT_EQ(0x1111, device.descriptor.vendor);
  EXPECT_EQ("a", device.product);
}

TEST(DeviceListReader, ReadsWhatMakesNoSenseAsNothing) {
  const Topology topology = kernel::ReadDeviceList(
      "T:  Bus=999 Lev=x Dev#=-1 Spd=fast MxCh=\nD:  Ver=2 Cls= #Cfgs=256\nI:  If#= 0\nE:  Ad=81(I)\nA:  "
      "IfCount= 1\n"
      "S:\nS:  Nickname=x\nX\n:\n");
  Device expected;
  expected.name = "usb0";
  EXPECT_THAT(topology.devices, ElementsAre(expected));
}

}  // namespace
}  // namespace usbinfo_test
