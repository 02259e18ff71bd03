// What counts as added, removed, moved and changed, item by item, compared in the form of the text for
// people.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::Compare;
using cli::Inventory;
using cli::InventoryDifference;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

/// The lines of the text without its first one and its last one.
std::vector<std::string> Differences(const InventoryBuilder& before, const InventoryBuilder& after) {
  const Inventory old = before.Read();
  const Inventory now = after.Read();
  std::vector<std::string> lines = Lines(cli::RenderDiffText(Compare(old, now), false));
  if (!lines.empty()) {
    lines.erase(lines.begin());
    lines.pop_back();
  }
  return lines;
}

const Model kStick = {"Stick", "S1"};
const Model kMouse = {"Mouse"};

/// A machine with one bus of four ports.
struct Machine : InventoryBuilder {
  explicit Machine(const std::string& system = "testhost") : InventoryBuilder(system), root(AddBus(1, 4)) {}
  std::string root;
};

TEST(InventoryDiff, FindsNoneBetweenAnInventoryAndItself) {
  Machine machine;
  machine.AddDevice(machine.AddHub(machine.root, 1, 2, 4), 0, 3, kStick);
  EXPECT_THAT(Differences(machine, machine), IsEmpty());
}

TEST(InventoryDiff, ListsADeviceThatWasAddedAndNotItsPortsState) {
  Machine before;
  Machine after;
  after.AddDevice(after.root, 2, 2, kStick);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("+ bus 1, port 2: device 1234:5678 \"Stick\", serial \"S1\""));
  EXPECT_THAT(Differences(after, before),
              ElementsAre("- bus 1, port 2: device 1234:5678 \"Stick\", serial \"S1\""));
}

TEST(InventoryDiff, PassesOverADeviceThatWasPluggedInAgainAtTheSamePort) {
  for (const Model& model : {kStick, kMouse}) {
    Machine before;
    before.AddDevice(before.root, 2, 2, model);
    Machine after;
    after.AddDevice(after.root, 2, 117, model);
    EXPECT_THAT(Differences(before, after), IsEmpty());
  }
}

TEST(InventoryDiff, PassesOverAHubAndAllOnItThatGotOtherNumbers) {
  Machine before;
  before.AddDevice(before.AddHub(before.root, 1, 2, 4), 3, 3, kMouse);
  Machine after;
  after.AddDevice(after.AddHub(after.root, 1, 44, 4), 3, 45, kMouse);
  EXPECT_THAT(Differences(before, after), IsEmpty());
}

TEST(InventoryDiff, ListsADeviceWithASerialNumberThatMoved) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kStick);
  Machine after;
  after.AddDevice(after.root, 3, 2, kStick);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("> bus 1, port 0 -> bus 1, port 3: device 1234:5678 \"Stick\", serial \"S1\""));
}

TEST(InventoryDiff, TakesTheOnlyDeviceOfItsModelForMovedWithDoubt) {
  for (const char* none : {"Not Available", ""}) {
    Machine before;
    before.AddDevice(before.root, 0, 2, {"Mouse", none});
    Machine after;
    after.AddDevice(after.root, 3, 2, {"Mouse", none});
    EXPECT_THAT(Differences(before, after),
                ElementsAre("> bus 1, port 0 -> bus 1, port 3: device 1234:5678 \"Mouse\", moved, it seems"));
    for (Machine* const machine : {&before, &after}) machine->AddDevice(machine->root, 1, 3, {"Mouse", none});
    EXPECT_THAT(Differences(before, after), ElementsAre("- bus 1, port 0: device 1234:5678 \"Mouse\"",
                                                        "+ bus 1, port 3: device 1234:5678 \"Mouse\""));
  }
}

TEST(InventoryDiff, ReportsTheOnlyDeviceOfItsModelAndWhatCameInItsPlace) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kMouse);
  Machine after;
  after.AddDevice(after.root, 3, 2, kMouse);
  after.AddDevice(after.root, 0, 3, {"Keyboard", "Not Available", 0x1234, 0x0001});
  EXPECT_THAT(Differences(before, after),
              ElementsAre("+ bus 1, port 0: device 1234:0001 \"Keyboard\"",
                          "> bus 1, port 0 -> bus 1, port 3: device 1234:5678 \"Mouse\", moved, it seems"));
}

TEST(InventoryDiff, MovesWhatIsConnectedToTheOnlyHubOfItsModelWithIt) {
  const Model hubModel = {"Hub", "Not Available", 1, 1};
  Machine before;
  before.AddDevice(before.AddHub(before.root, 1, 2, 4, hubModel), 0, 3, kMouse);
  Machine after;
  after.AddDevice(after.AddHub(after.root, 2, 5, 4, hubModel), 0, 3, kMouse);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("> bus 1, port 1 -> bus 1, port 2: hub 0001:0001 \"Hub\", moved, it seems"));
}

TEST(InventoryDiff, RecognisesAnItemByVendorProductAndSerialNumberTogether) {
  for (const Model& other :
       {Model{"Stick", "S2"}, Model{"Stick", "S1", 0x4321}, Model{"Stick", "S1", 0x1234, 1}}) {
    Machine before;
    before.AddDevice(before.root, 0, 2, kStick);
    Machine after;
    after.AddDevice(after.root, 0, 2, other);
    const InventoryDifference difference = Compare(before.Read(), after.Read());
    EXPECT_EQ(difference.removed.size(), 1U);
    EXPECT_EQ(difference.added.size(), 1U);
    EXPECT_THAT(difference.moved, IsEmpty());
    EXPECT_THAT(difference.changed, IsEmpty());
  }
}

TEST(InventoryDiff, ListsAnotherModelWithoutSerialNumberAtTheSamePlaceAsChanged) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kMouse);
  Machine after;
  after.AddDevice(after.root, 0, 2, {"Keyboard", "Not Available", 0x1234, 0x0001});
  EXPECT_THAT(Differences(before, after),
              ElementsAre("~ bus 1, port 0: device 1234:5678 \"Mouse\" -> 1234:0001 \"Keyboard\"",
                          "    Description: \"Mouse\" -> \"Keyboard\"", "    USBDeviceID: 5678 -> 0001"));
}

TEST(InventoryDiff, RecognisesTheSameModelWhoseSerialNumberCouldBeReadOnce) {
  Machine before;
  before.AddDevice(before.root, 0, 2, {"Stick", "Not Available"});
  Machine after;
  after.AddDevice(after.root, 0, 2, kStick);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("~ bus 1, port 0: device 1234:5678 \"Stick\", serial \"S1\"",
                          "    SerialNumber: none -> \"S1\""));
  EXPECT_THAT(Differences(after, before),
              ElementsAre("~ bus 1, port 0: device 1234:5678 \"Stick\"", "    SerialNumber: \"S1\" -> none"));
}

TEST(InventoryDiff, ListsAnotherModelWithASerialNumberAsRemovedAndAdded) {
  Machine before;
  before.AddDevice(before.root, 0, 2, {"Mouse", "Not Available", 1, 1});
  Machine after;
  after.AddDevice(after.root, 0, 2, kStick);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("- bus 1, port 0: device 0001:0001 \"Mouse\"",
                          "+ bus 1, port 0: device 1234:5678 \"Stick\", serial \"S1\""));
}

TEST(InventoryDiff, MatchesItemsThatShareASerialNumberByPlaceFirstAndThenInOrder) {
  Machine before;
  for (const int port : {0, 1, 2}) before.AddDevice(before.root, port, port + 2, kStick);
  Machine after;
  for (const int port : {1, 3}) after.AddDevice(after.root, port, port + 2, kStick);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("- bus 1, port 2: device 1234:5678 \"Stick\", serial \"S1\"",
                          "> bus 1, port 0 -> bus 1, port 3: device 1234:5678 \"Stick\", serial \"S1\""));
}

TEST(InventoryDiff, ListsAHubThatWasRemovedWithItsPortsAndEachDeviceOnIt) {
  Machine before;
  const std::string hub = before.AddHub(before.root, 1, 2, 7, {"Hub", "H1"});
  before.AddDevice(hub, 6, 3, kMouse);
  const Machine after;
  EXPECT_THAT(Differences(before, after),
              ElementsAre("- bus 1, port 1: hub 1234:5678 \"Hub\", serial \"H1\", with 7 ports",
                          "- bus 1, port 1.6: device 1234:5678 \"Mouse\""));
}

TEST(InventoryDiff, MovesWhatIsConnectedToAHubWithIt) {
  Machine before;
  const std::string hub = before.AddHub(before.root, 1, 2, 4, {"Hub", "H1"});
  before.AddDevice(hub, 0, 3, kMouse);
  before.AddDevice(hub, 1, 4, kStick);
  before.AddDevice(before.AddHub(hub, 2, 5, 2), 0, 6, kMouse);
  Machine after;
  const std::string outer = after.AddHub(after.root, 3, 9, 4, {"Outer", "H2"});
  const std::string moved = after.AddHub(outer, 2, 8, 4, {"Hub", "H1"});
  after.AddDevice(moved, 0, 7, kMouse);
  after.AddDevice(moved, 1, 6, kStick);
  after.AddDevice(after.AddHub(moved, 2, 5, 2), 0, 4, kMouse);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("+ bus 1, port 3: hub 1234:5678 \"Outer\", serial \"H2\", with 4 ports",
                          "> bus 1, port 1 -> bus 1, port 3.2: hub 1234:5678 \"Hub\", serial \"H1\""));
}

TEST(InventoryDiff, ListsWhatChangedOnAHubThatMoved) {
  Machine before;
  const std::string hub = before.AddHub(before.root, 1, 2, 2, {"Hub", "H1"});
  before.AddDevice(hub, 0, 3, kMouse);
  Machine after;
  const std::string moved = after.AddHub(after.root, 2, 2, 2, {"Hub", "H1"});
  after.AddDevice(moved, 1, 3, kMouse);
  EXPECT_THAT(
      Differences(before, after),
      ElementsAre("> bus 1, port 1 -> bus 1, port 2: hub 1234:5678 \"Hub\", serial \"H1\"",
                  "> bus 1, port 1.0 -> bus 1, port 2.1: device 1234:5678 \"Mouse\", moved, it seems"));
}

TEST(InventoryDiff, ListsThePropertiesThatChangedBelowAnItemThatMoved) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kStick);
  Machine after;
  after.AddDevice(after.root, 3, 2, kStick);
  after.Last("KALDO_USBDevice")["USBVersion"] = 300;
  EXPECT_THAT(Differences(before, after),
              ElementsAre("> bus 1, port 0 -> bus 1, port 3: device 1234:5678 \"Stick\", serial \"S1\"",
                          "    USBVersion: 200 -> 300"));
}

TEST(InventoryDiff, ListsEveryPropertyThatChanged) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kStick);
  Machine after;
  after.AddDevice(after.root, 0, 2, kStick);
  after.Last("KALDO_USBDevice").update({{"Manufacturer", "Other"}, {"Speed", 3}, {"ClassCode", 8}});
  after.Last("KALDO_USBDevice").erase("Description");
  EXPECT_THAT(Differences(before, after),
              ElementsAre("~ bus 1, port 0: device 1234:5678 \"Stick\" -> 1234:5678 (no name), serial \"S1\"",
                          "    ClassCode: 0 -> 8", "    Description: \"Stick\" -> none",
                          "    Manufacturer: \"Maker\" -> \"Other\"", "    Speed: 12 Mbit/s -> 480 Mbit/s"));
}

TEST(InventoryDiff, TakesTheWordForNoTextAsNone) {
  Machine before;
  before.AddDevice(before.root, 0, 2, {"Not Available"});
  Machine after;
  after.AddDevice(after.root, 0, 2, {"", ""});
  after.Last("KALDO_USBDevice").erase("Description");
  EXPECT_THAT(Differences(before, after), IsEmpty());
}

TEST(InventoryDiff, ListsAPortsOwnChanges) {
  Machine before;
  Machine after;
  nlohmann::json& port = after.Find("KALDO_USBPort", after.root + " Port 03");
  port["Speed"] = 5000000000;
  port["StatusDescriptions"] = {"Device connected", "Odd"};
  EXPECT_THAT(
      Differences(before, after),
      ElementsAre("~ bus 1, port 3: port", "    Speed: 480 Mbit/s -> 5 Gbit/s",
                  "    StatusDescriptions: \"No device connected\" -> \"Device connected\", \"Odd\""));
}

TEST(InventoryDiff, ListsPortsThatAHubGained) {
  Machine before;
  before.AddHub(before.root, 0, 2, 2);
  Machine after;
  after.AddHub(after.root, 0, 2, 3);
  EXPECT_THAT(Differences(before, after),
              ElementsAre("~ bus 1, port 0: hub 1234:5678 \"Item\"", "    NumberOfPorts: 2 -> 3",
                          "+ bus 1, port 0.2: port"));
}

TEST(InventoryDiff, ListsAControllerThatWasAddedWithItsRootHub) {
  InventoryBuilder before;
  before.AddBus(1, 2);
  InventoryBuilder after = before;
  after.AddBus(2, 6, "0000:00:14.0");
  EXPECT_THAT(Differences(before, after),
              ElementsAre("+ bus 2: controller \"Controller\"",
                          "+ bus 2: hub 1d6b:0002 \"Controller\", serial \"0000:00:14.0\", with 6 ports"));
}

TEST(InventoryDiff, RecognisesAControllerWhoseBusGotAnotherNumber) {
  InventoryBuilder before;
  before.AddDevice(before.AddBus(1, 2, "0000:00:14.0"), 0, 2, kMouse);
  InventoryBuilder after;
  after.AddDevice(after.AddBus(3, 2, "0000:00:14.0"), 0, 2, kMouse);
  EXPECT_THAT(Differences(before, after), IsEmpty());
}

TEST(InventoryDiff, RecognisesAControllerByItsBusWhereARootHubHasNoSerialNumber) {
  InventoryBuilder before;
  before.AddDevice(before.AddBus(1, 2, "0000:00:14.0"), 0, 2, kMouse);
  InventoryBuilder after;
  after.AddDevice(after.AddBus(1, 2), 0, 2, kMouse);
  EXPECT_THAT(Differences(before, after), ElementsAre("~ bus 1: hub 1d6b:0002 \"Controller\"",
                                                      "    SerialNumber: \"0000:00:14.0\" -> none"));
}

TEST(InventoryDiff, ListsADeviceThatAHubReplacedAsRemovedAndAdded) {
  Machine before;
  before.AddDevice(before.root, 0, 2, kMouse);
  Machine after;
  after.AddHub(after.root, 0, 2, 4);
  EXPECT_THAT(Differences(before, after), ElementsAre("+ bus 1, port 0: hub 1234:5678 \"Item\", with 4 ports",
                                                      "- bus 1, port 0: device 1234:5678 \"Mouse\""));
}

TEST(InventoryDiff, ComparesTwoMachinesWhateverTheirNames) {
  const Machine before("one");
  Machine after("two");
  EXPECT_THAT(Differences(before, after), IsEmpty());
  after.AddDevice(after.root, 0, 2, kMouse);
  EXPECT_THAT(Differences(before, after), ElementsAre("+ bus 1, port 0: device 1234:5678 \"Mouse\""));
}

TEST(InventoryDiff, OrdersByBusAndPortsAsNumbers) {
  InventoryBuilder before;
  InventoryBuilder after;
  for (InventoryBuilder* const machine : {&before, &after}) {
    for (const int bus : {10, 2}) machine->AddBus(bus, 12);
  }
  for (const int port : {10, 9, 0}) {
    after.AddDevice("Bus 10  Device   1", port, port + 2, kMouse);
    after.AddDevice("Bus 02  Device   1", port, port + 2, kMouse);
  }
  const Inventory old = before.Read();
  const Inventory now = after.Read();
  std::vector<std::string> places;
  for (const cli::PlacedItem& placed : Compare(old, now).added) places.push_back(cli::DescribePlace(placed));
  EXPECT_THAT(places, ElementsAre("bus 2, port 0", "bus 2, port 9", "bus 2, port 10", "bus 10, port 0",
                                  "bus 10, port 9", "bus 10, port 10"));
}

/// What a difference lists, as texts in a fixed order.
struct Listed {
  std::vector<std::string> added, removed, moved, changed;

  bool operator==(const Listed& other) const {
    return added == other.added && removed == other.removed && moved == other.moved &&
           changed == other.changed;
  }
};

std::string TextOf(const cli::PlacedItem& placed) {
  std::string text = cli::DescribePlace(placed);
  for (const auto& property : placed.item->Schema().properties) {
    text += " " + property.name + "=" + placed.item->Text(property.id);
  }
  return text;
}

Listed ListAll(const InventoryDifference& difference, bool isMirrored) {
  Listed listed;
  const auto texts = [isMirrored](const std::vector<cli::ItemChange>& changes) {
    std::vector<std::string> lines;
    for (const cli::ItemChange& change : changes) {
      std::string line = TextOf(isMirrored ? change.after : change.before) + " > " +
                         TextOf(isMirrored ? change.before : change.after);
      for (const cli::PropertyChange& property : change.properties) line += " " + std::string(property.name);
      lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  };
  for (const cli::PlacedItem& placed : difference.added) listed.added.push_back(TextOf(placed));
  for (const cli::PlacedItem& placed : difference.removed) listed.removed.push_back(TextOf(placed));
  listed.moved = texts(difference.moved);
  listed.changed = texts(difference.changed);
  if (isMirrored) std::swap(listed.added, listed.removed);
  return listed;
}

/// A machine of hubs and devices plugged in at random; few serial numbers, so that many are shared.
InventoryBuilder RandomMachine(unsigned int seed) {
  std::mt19937 random(seed);
  const auto below = [&random](unsigned int limit) { return static_cast<int>(random() % limit); };
  const auto model = [&below] {
    const int serial = below(5);
    return Model{"Item", serial < 2 ? "Not Available" : "S" + std::to_string(serial), 1, below(3)};
  };
  InventoryBuilder machine;
  std::vector<std::string> hubs = {machine.AddBus(1, 3, "R1"), machine.AddBus(2, 3)};
  for (int number = 2; number < 14; ++number) {
    const std::string parent = hubs[random() % hubs.size()];
    const int port = below(3);
    if (below(2) == 0) {
      hubs.push_back(machine.AddHub(parent, port, number, 3, model()));
    } else {
      machine.AddDevice(parent, port, number, model());
    }
  }
  return machine;
}

TEST(InventoryDiff, IsMirroredWhereTheInventoriesChangePlaces) {
  constexpr unsigned int kMachines = 300;
  for (unsigned int seed = 0; seed < kMachines; ++seed) {
    const Inventory one = RandomMachine(2 * seed).Read();
    const Inventory other = RandomMachine(2 * seed + 1).Read();
    EXPECT_TRUE(ListAll(Compare(one, other), false) == ListAll(Compare(other, one), true)) << "seed " << seed;
    EXPECT_TRUE(Compare(one, one).IsEmpty()) << "seed " << seed;
  }
}

TEST(InventoryDiff, ListsEveryItemOfAnInventoryThatIsComparedWithAnEmptyOne) {
  const Inventory empty = InventoryBuilder().Read();
  const Inventory machine = RandomMachine(7).Read();
  const InventoryDifference difference = Compare(empty, machine);
  std::size_t ports = 0;
  for (const cli::PlacedItem& placed : difference.added) ports += placed.ports;
  EXPECT_EQ(difference.added.size() + ports, machine.Controllers().size() + machine.Hubs().size() +
                                                 machine.Ports().size() + machine.Devices().size());
  EXPECT_THAT(difference.removed, IsEmpty());
  EXPECT_THAT(difference.moved, IsEmpty());
  EXPECT_THAT(difference.changed, IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
