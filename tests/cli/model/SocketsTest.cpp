// The picture of sockets: of recorded machines, whose peers the kernel has told, and of machines made by hand
// that show one rule each.
#include <gmock/gmock.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/TreeFormat.h"
#include "cli/model/FromKernel.h"
#include "cli/model/Selection.h"
#include "cli/model/SocketText.h"
#include "cli/model/Sockets.h"
#include "kernel/DeviceListWriter.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/kernel/RecordedMachine.h"

using cli::ClassId;
using cli::Inventory;
using cli::SocketNode;
using cli::Sockets;
using nlohmann::json;
using testing::ElementsAre;

namespace usbinfo_test {
namespace {

cli::Selection Free() {
  cli::Selection selection;
  selection.occupancy = cli::Occupancy::kFree;
  return selection;
}

cli::Selection Occupied() {
  cli::Selection selection;
  selection.occupancy = cli::Occupancy::kOccupied;
  return selection;
}

class RecordedSocketsTest : public CliTest {
 protected:
  /// As the command collects it from that machine's sysfs.
  Inventory Read(const std::string& name) {
    host.Reset();
    const kernel::Topology topology = UnpackedSysfs(ReadRecord(name)).Read();
    Collect(kernel::WriteDeviceList(topology));
    Inventory inventory = Collected();
    inventory.SetKernel(cli::FromKernel(topology, inventory));
    return inventory;
  }
};

// Ports 1, 2, 3 and 4 of bus 2 are the peers of those of bus 1.
constexpr const char* kMachine = R"(vm: 8 controllers, 12 hubs, 68 sockets (52 free), 12 devices

USB                      KIND            DEVICE                        ID             SPEED
usb1, usb2               controller      xHCI Host Controller          1d6b:0002   5 Gbit/s
├─1-1                                    in use                                    5 Gbit/s
│ └─2-1                  mass storage    QEMU USB HARDDRIVE            46f4:0001   5 Gbit/s
├─1-2                    hub             QEMU USB Hub, 8 sockets       0409:55aa  12 Mbit/s
│ ├─1-2.1                keyboard        QEMU USB Keyboard             0627:0001  12 Mbit/s
│ ├─1-2.2                                free                                     12 Mbit/s
│ ├─1-2.3                hub             QEMU USB Hub, 8 sockets       0409:55aa  12 Mbit/s
│ │ ├─1-2.3.1 to 1-2.3.7                 free                                     12 Mbit/s
│ │ └─1-2.3.8            mouse           QEMU USB Mouse                0627:0001  12 Mbit/s
│ ├─1-2.4                audio           QEMU USB Audio                46f4:0002  12 Mbit/s
│ └─1-2.5 to 1-2.8                       free                                     12 Mbit/s
├─1-3                                    in use                                    5 Gbit/s
│ └─2-3                  mass storage    USB Attached SCSI HBA         46f4:0003   5 Gbit/s
├─1-4                                    free                                      5 Gbit/s
├─1-5 to 1-10                            free                                    480 Mbit/s
├─1-11                   input           QEMU USB Tablet               0627:0001 480 Mbit/s
└─1-12                                   free                                    480 Mbit/s
usb3, usb4               controller      xHCI Host Controller          1d6b:0002   5 Gbit/s
└─3-1                                    free                                      5 Gbit/s
usb5                     controller      EHCI Host Controller          1d6b:0002 480 Mbit/s
├─5-1 to 5-4                             free                                    480 Mbit/s
├─5-5                    mass storage    QEMU USB HARDDRIVE            46f4:0001 480 Mbit/s
└─5-6                                    free                                    480 Mbit/s
usb6                     controller      EHCI Host Controller          1d6b:0002 480 Mbit/s
├─6-1                    keyboard        QEMU USB Keyboard             0627:0001 480 Mbit/s
└─6-2 to 6-6                             free                                    480 Mbit/s
usb7                     controller      OHCI PCI host controller      1d6b:0001  12 Mbit/s
├─7-1 to 7-3                             free                                     12 Mbit/s
├─7-4                    hub             QEMU USB Hub, 8 sockets       0409:55aa  12 Mbit/s
│ ├─7-4.1 to 7-4.6                       free                                     12 Mbit/s
│ ├─7-4.7                mouse           Wacom PenPartner              056a:0000  12 Mbit/s
│ └─7-4.8                network         RNDIS/QEMU USB Network Device 0525:a4a2  12 Mbit/s
└─7-5                                    free                                     12 Mbit/s
usb8                     controller      UHCI Host Controller          1d6b:0001  12 Mbit/s
├─8-1                    vendor-specific QEMU USB SERIAL               0403:6001  12 Mbit/s
└─8-2                                    free                                     12 Mbit/s
usb9                     controller      UHCI Host Controller          1d6b:0001  12 Mbit/s
├─9-1                                    free                                     12 Mbit/s
└─9-2                                    free                                     12 Mbit/s
usb10                    controller      UHCI Host Controller          1d6b:0001  12 Mbit/s
├─10-1                                   free                                     12 Mbit/s
└─10-2                   hub             QEMU USB Hub, 8 sockets       0409:55aa  12 Mbit/s
  ├─10-2.1                               free                                     12 Mbit/s
  ├─10-2.2               mouse           QEMU USB Mouse                0627:0001  12 Mbit/s
  └─10-2.3 to 10-2.8                     free                                     12 Mbit/s
)";

TEST_F(RecordedSocketsTest, ShowBothPortsOfASocketAsOne) {
  const CharacterSet characters("C.UTF-8");
  EXPECT_EQ(cli::RenderTree(Read("machine"), {false}), kMachine);
}

TEST_F(RecordedSocketsTest, HoldEveryItemOnceWhateverIsSelected) {
  for (const std::string& name : RecordedMachines()) {
    const Inventory whole = Read(name);
    cli::Selection byBus;
    byBus.place = cli::ParseBusDevice("2:");
    for (const Inventory& inventory :
         {whole, Select(whole, Free(), true), Select(whole, Occupied(), true), Select(whole, byBus, true)}) {
      const Sockets sockets(inventory);
      std::set<const cli::Item*> items;
      std::size_t halves = 0;
      for (const SocketNode& node : sockets.Nodes()) {
        for (const cli::SocketHalf& half : node.halves) items.insert(&half.GetItem());
        halves += node.halves.size();
      }
      EXPECT_EQ(items.size(), halves) << name;
      EXPECT_EQ(halves, inventory.Controllers().size() + inventory.Hubs().size() + inventory.Ports().size() +
                            inventory.Devices().size())
          << name;
    }
  }
}

TEST_F(RecordedSocketsTest, AreSelectedWholeByWhatIsPluggedIn) {
  const Inventory whole = Read("machine");
  EXPECT_EQ(Summary(Sockets(Select(whole, Free(), true))),
            "vm: 8 controllers, 12 hubs, 56 of 68 sockets (52 free), 0 of 12 devices");
  EXPECT_EQ(Summary(Sockets(Select(whole, Occupied(), true))),
            "vm: 6 of 8 controllers, 10 of 12 hubs, 16 of 68 sockets, 12 devices");
}

/// A machine with a USB 3 controller, buses 1 and 2, and what the kernel knows of its ports.
class Usb3Machine : public InventoryBuilder {
 public:
  explicit Usb3Machine(int ports) {
    Document()["kernel"] = {{"devices", json::array()}, {"ports", json::array()}};
    for (const int bus : {1, 2}) {
      const std::string hub = AddBus(bus, ports);
      Know(hub, "usb" + std::to_string(bus));
      for (int port = 1; port <= ports; ++port) {
        const std::string name = "-" + std::to_string(port);
        KnowPort(hub, port, std::to_string(bus) + name, std::to_string(3 - bus) + name);
      }
    }
  }

  void Know(const std::string& identifier, const std::string& name) {
    json facts = KernelExample()["devices"][1];
    facts.update({{"device", identifier}, {"name", name}});
    Document()["kernel"]["devices"].push_back(facts);
  }
  /// Of a free port with a number from 1.
  void KnowPort(const std::string& hub, int number, const std::string& name, const json& peer) {
    Document()["kernel"]["ports"].push_back({{"port", hub + " Port 0" + std::to_string(number - 1)},
                                             {"name", name},
                                             {"peer", peer},
                                             {"connect", "hotplug"},
                                             {"state", "free"}});
  }
  /// What is known of the port of that name.
  json& Port(const std::string& name) {
    for (json& port : Document()["kernel"]["ports"]) {
      if (port["name"] == name) return port;
    }
    throw std::invalid_argument(name);
  }
};

constexpr const char* kHub1 = "Bus 01  Device   1";
constexpr const char* kHub2 = "Bus 02  Device   1";

/// A line for each node with two blanks per level: its kind, its name, and its state or its number of halves.
std::vector<std::string> Drawn(const Sockets& sockets) {
  constexpr const char* kKinds[] = {"controller ", "hub ", "socket ", "device "};
  std::vector<std::string> lines;
  for (const SocketNode& node : sockets.Nodes()) {
    std::string line;
    for (std::size_t at = node.parent; at != SocketNode::kNone; at = sockets.Nodes()[at].parent) line += "  ";
    line += kKinds[static_cast<std::size_t>(node.Class())] + node.name;
    if (node.halves.size() > 1) line += " twice";
    if (node.Class() == ClassId::kPort) line += std::string(" ") + cli::NameOf(node.state);
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> Drawn(const InventoryBuilder& machine) {
  const Inventory inventory = machine.Read();
  return Drawn(Sockets(inventory));
}

TEST(SocketsTest, AreFreeOnlyIfBothPortsAre) {
  Usb3Machine machine(2);
  machine.Know(machine.AddDevice(kHub2, 1, 2), "2-2");
  machine.Port("2-2")["state"] = "used";
  EXPECT_THAT(Drawn(machine),
              ElementsAre("controller usb1, usb2 twice", "  hub usb1 twice", "    socket 1-1 twice free",
                          "    socket 1-2 twice in use", "      device 2-2"));
  machine.Port("2-1")["state"] = nullptr;
  EXPECT_EQ(Drawn(machine)[2], "    socket 1-1 twice unknown");
}

TEST(SocketsTest, HoldBothHalvesOfAHubAsOne) {
  Usb3Machine machine(1);
  for (const int bus : {2, 1}) {
    const std::string digit = std::to_string(bus);
    const std::string hub = machine.AddHub(bus == 1 ? kHub1 : kHub2, 0, 5, 2);
    machine.Know(hub, digit + "-1");
    for (int port = 1; port <= 2; ++port) {
      const std::string name = "-1." + std::to_string(port);
      machine.KnowPort(hub, port, digit + name, std::to_string(3 - bus) + name);
    }
  }
  EXPECT_THAT(Drawn(machine),
              ElementsAre("controller usb1, usb2 twice", "  hub usb1 twice", "    socket 1-1 twice in use",
                          "      hub 1-1 twice", "        socket 1-1.1 twice free",
                          "        socket 1-1.2 twice free"));
  const Inventory inventory = machine.Read();
  EXPECT_EQ(Summary(Sockets(inventory)), "testhost: 1 controller, 2 hubs, 3 sockets (2 free), 0 devices");
}

TEST(SocketsTest, ArePortsWhereOnlyOneOfThemNamesTheOther) {
  Usb3Machine machine(1);
  machine.Port("2-1")["peer"] = "1-9";
  EXPECT_THAT(Drawn(machine), ElementsAre("controller usb1", "  hub usb1", "    socket 1-1 free",
                                          "controller usb2", "  hub usb2", "    socket 2-1 free"));
  machine.Port("2-1")["peer"] = "2-1";
  EXPECT_EQ(Drawn(machine).size(), 6U);
}

TEST(SocketsTest, AreNotFreeWhereTheKernelCallsThemNotUsed) {
  Usb3Machine machine(2);
  for (const char* name : {"1-1", "2-1"}) machine.Port(name)["connect"] = "not used";
  machine.Port("1-2")["connect"] = "hardwired";
  const Inventory inventory = machine.Read();
  const Sockets sockets(inventory);
  EXPECT_EQ(Summary(sockets), "testhost: 1 controller, 1 hub, 2 sockets (1 free, 1 not used), 0 devices");
  EXPECT_EQ(DescribeRow(sockets, sockets.Nodes()[2]), "not used");
  EXPECT_EQ(DescribeRow(sockets, sockets.Nodes()[3]), "free, hard-wired");
  EXPECT_EQ(Select(inventory, Free(), false).Ports().size(), 2U);
}

TEST(SocketsTest, ShowTheDevicesOwnStringsAndNotWhatTheyMakeThePluginTakeForThem) {
  Usb3Machine machine(1);
  machine.Know(machine.AddDevice(kHub1, 0, 2, {"Approved Mouse", "Approved"}), "1-1");
  json& facts = machine.Document()["kernel"]["devices"].back();
  facts["manufacturer"] = "Evil Product=Approved Mouse";
  const Inventory inventory = machine.Read();
  const Sockets sockets(inventory);
  const SocketNode& device = sockets.Nodes().back();
  EXPECT_EQ(cli::NameOf(device), "(no name)");
  EXPECT_EQ(cli::SerialOf(device), "");
  EXPECT_EQ(cli::ManufacturerOf(device), "Evil Product=Approved Mouse");
}

TEST(SocketsTest, FoldWhereThreeInARowAreAlike) {
  Usb3Machine machine(7);
  machine.Port("1-3")["connect"] = "hardwired";
  const Inventory inventory = machine.Read();
  const Sockets sockets(inventory);
  const auto places = [&](bool folds) {
    std::vector<std::string> texts;
    for (const cli::SocketRow& row : sockets.Rows(folds)) texts.push_back(PlaceOf(sockets, row));
    return texts;
  };
  EXPECT_THAT(places(true), ElementsAre("usb1, usb2", "1-1", "1-2", "1-3", "1-4 to 1-7"));
  EXPECT_EQ(places(false).size(), 8U);
}

}  // namespace
}  // namespace usbinfo_test
