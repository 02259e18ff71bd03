// What an inventory holds of the kernel's records of devices and ports.
#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

#include "cli/model/FromKernel.h"
#include "kernel/DeviceListReader.h"
#include "kernel/Topology.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::DeviceFacts;
using cli::Inventory;
using cli::KernelFacts;
using cli::PortFacts;
using kernel::Device;
using kernel::Topology;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

Device Named(const std::string& name, unsigned bus, unsigned number) {
  Device device;
  device.name = name;
  device.bus = bus;
  device.number = number;
  return device;
}

/// A stick in port 3 of bus 1, as sysfs shows it.
Device Stick() {
  Device stick = Named("1-3", 1, 4);
  stick.megabitsPerSecond = 480;
  stick.descriptor.vendor = 0x1234;
  stick.descriptor.revision = 0x0A1F;
  stick.manufacturer = "Acme";
  stick.product = "";
  stick.serial = "S1";
  stick.nodes = {"/dev/bus/usb/001/004", "/dev/sda"};
  kernel::Configuration other;
  other.value = 2;
  other.maxPower = 98;
  other.interfaces = {{0, "", {{0, true, {0xFF, 1, 2}, {}}}}};
  kernel::Configuration active;
  active.value = 1;
  active.maxPower = 500;
  active.isActive = true;
  active.interfaces = {{1, "uas", {{0, false, {8, 6, 0x50}, {}}, {1, true, {8, 6, 0x62}, {}}}}};
  stick.configurations = {other, active};
  return stick;
}

TEST(FromKernel, HoldsAllThatIsKnownOfADevice) {
  const KernelFacts facts = cli::FromKernel({{Stick()}, {}, {}}, Inventory("testhost"));
  DeviceFacts expected;
  expected.device = "Bus 01  Device   4";
  expected.name = "1-3";
  expected.number = 4;
  expected.speed = 480;
  expected.manufacturer = "Acme";
  expected.product = "";
  expected.serial = "S1";
  expected.kinds = {"mass storage"};
  expected.interfaces = {{2, 0, 0, false, 0xFF, 1, 2, std::nullopt},
                         {1, 1, 0, false, 8, 6, 0x50, "uas"},
                         {1, 1, 1, true, 8, 6, 0x62, "uas"}};
  expected.maxPower = 500;
  expected.revision = "a.1f";
  expected.nodes = {{"/dev/bus/usb/001/004", "/dev/sda"}};
  EXPECT_THAT(facts.devices, ElementsAre(expected));
}

TEST(FromKernel, HoldsNothingOfWhatIsNotKnown) {
  const KernelFacts facts = cli::FromKernel({{Named("", 12, 123)}, {}, {}}, Inventory("testhost"));
  DeviceFacts expected;
  expected.device = "Bus 12  Device 123";
  expected.number = 123;
  EXPECT_THAT(facts.devices, ElementsAre(expected));
}

TEST(FromKernel, HoldsOnlySpeedsThatDevicesCanHave) {
  const auto speedOf = [](double rate) {
    Device device = Named("1-1", 1, 2);
    device.megabitsPerSecond = rate;
    return cli::FromKernel({{device}, {}, {}}, Inventory("testhost")).devices.at(0).speed;
  };
  for (const double rate : {1.5, 12.0, 480.0, 20000.0}) EXPECT_EQ(speedOf(rate), rate);
  for (const double rate : {0.0, -12.0, 0.5, 12.5, 1e300, std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(speedOf(rate), std::nullopt) << rate;
  }
}

TEST(FromKernel, HoldsNoNameThatNoDeviceCanHave) {
  const KernelFacts facts = cli::FromKernel({{Named("1-256", 1, 2)}, {}, {}}, Inventory("testhost"));
  EXPECT_EQ(facts.devices.at(0).name, std::nullopt);
}

TEST(FromKernel, NamesWhatIsOrWouldBePluggedIntoAPort) {
  const Topology topology = {{Named("usb1", 1, 1), Named("1-3", 1, 4)},
                             {{"usb1-port3", "usb1", 3, "hotplug", "usb2-port1", "1-3"},
                              {"usb1-port4", "usb1", 4, "not used", "", ""},
                              {"1-3-port12", "1-3", 12, "", "2-1.4-port2", ""},
                              {"1-9-port1", "1-9", 1, "", "", ""}},
                             {}};
  EXPECT_THAT(cli::FromKernel(topology, Inventory("testhost")).ports,
              ElementsAre(PortFacts{"Bus 01  Device   1 Port 02", "1-3", "2-1", "hotplug", true},
                          PortFacts{"Bus 01  Device   1 Port 03", "1-4", std::nullopt, "not used", false},
                          PortFacts{"Bus 01  Device   4 Port 11", "1-3.12", "2-1.4.2", std::nullopt, false}));
}

TEST(FromKernel, CallsThingsAsTheInventoryDoesWhateverItsBlanks) {
  InventoryBuilder machine;
  machine.AddBus(1, 1);
  machine.AddDevice("Bus 01  Device   1", 0, 2);
  machine.Last("KALDO_USBHub")["DeviceID"] = "Bus 1 Device 1";
  machine.Last("KALDO_USBDevice")["DeviceID"] = "Bus  001  Device    2";
  const Topology topology = {{Named("usb1", 1, 1), Named("1-1", 1, 2), Named("1-2", 1, 3)},
                             {{"usb1-port1", "usb1", 1, "", "", "1-1"}},
                             {}};
  const KernelFacts facts = cli::FromKernel(topology, machine.Read());
  EXPECT_EQ(facts.devices.at(0).device, "Bus 1 Device 1");
  EXPECT_EQ(facts.devices.at(1).device, "Bus  001  Device    2");
  EXPECT_EQ(facts.devices.at(2).device, "Bus 01  Device   3");
  EXPECT_EQ(facts.ports.at(0).port, "Bus 1 Device 1 Port 00");
}

TEST(FromKernel, CallsNoPortFreeOnABusWithADeviceThatHasNoPlace) {
  const auto hub = [](const char* bus) {
    return std::string("T:  Bus=") + bus + " Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\n\n";
  };
  const KernelFacts facts =
      cli::FromKernel(kernel::ReadDeviceList(hub("01") + "T:  Bus=01 Lev=01 Prnt=01 Port=00 Dev#=  2\n\n" +
                                             "T:  Bus=01 Lev=02 Prnt=09 Port=00 Dev#=  3\n\n" + hub("02")),
                      Inventory("testhost"));
  std::vector<std::optional<bool>> states;
  for (const PortFacts& port : facts.ports) states.push_back(port.isUsed);
  EXPECT_THAT(states, ElementsAre(true, std::nullopt, false, false));
}

TEST(InventoryOnly, KeepsTheOriginAndWhatTheKernelKnowsOfItsItems) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 2), 0, 2);
  machine.Document()["origin"] = OriginExample();
  machine.Document()["kernel"] = KernelExample();
  const Inventory whole = machine.Read();
  const auto partOf = [&](cli::ClassId classId) {
    return whole.Only([classId](const cli::Item& item) { return item.Class() == classId; });
  };
  const KernelFacts& all = *whole.Kernel();
  const Inventory devices = partOf(cli::ClassId::kDevice);
  EXPECT_EQ(devices.GetOrigin(), whole.GetOrigin());
  EXPECT_EQ(*devices.Kernel(), (KernelFacts{{all.devices[0]}, {}}));
  EXPECT_EQ(*partOf(cli::ClassId::kHub).Kernel(), (KernelFacts{{all.devices[1]}, {}}));
  EXPECT_EQ(*partOf(cli::ClassId::kPort).Kernel(), (KernelFacts{{}, all.ports}));
  EXPECT_EQ(*partOf(cli::ClassId::kController).Kernel(), KernelFacts{});
}

}  // namespace
}  // namespace usbinfo_test
