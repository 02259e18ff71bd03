// Where items are plugged in: buses and chains of ports from the links, also when links are missing, broken,
// circular or too many.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "cli/diff/DiffText.h"
#include "cli/model/UsbTree.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::Inventory;
using cli::Place;
using testing::ElementsAre;

namespace usbinfo_test {
namespace {

/// The places of all items, in the inventory's order.
std::vector<std::string> PlacesOf(const InventoryBuilder& machine) {
  const Inventory inventory = machine.Read();
  std::vector<std::string> places;
  const cli::UsbTree tree(inventory);
  for (const cli::UsbTreeNode& node : tree.Nodes()) {
    places.push_back(cli::DescribePlace(node.place));
  }
  return places;
}

TEST(Place, PlacesItemsByTheirBusAndTheChainOfTheirPorts) {
  InventoryBuilder machine;
  const std::string root = machine.AddBus(12, 2);
  machine.AddDevice(machine.AddHub(root, 1, 7, 1), 0, 9);
  EXPECT_THAT(PlacesOf(machine), ElementsAre("bus 12", "bus 12", "bus 12, port 1", "bus 12, port 0",
                                             "bus 12, port 1", "bus 12, port 1.0", "bus 12, port 1.0"));
}

TEST(Place, PlacesWhatNoControllerLeadsToByThePortItIsOn) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddHub(machine.AddBus(1, 1), 0, 2, 1), 0, 3);
  machine.Document()["classes"]["KALDO_USBController"].clear();
  EXPECT_THAT(PlacesOf(machine),
              ElementsAre("\"Bus 01  Device   1\"", "\"Bus 01  Device   1\", port 0",
                          "\"Bus 01  Device   1\", port 0", "\"Bus 01  Device   1\", port 0.0",
                          "\"Bus 01  Device   1\", port 0.0"));
  machine.Document()["classes"]["KALDO_USBConnection"].clear();
  EXPECT_THAT(PlacesOf(machine),
              ElementsAre("\"Bus 01  Device   1\"", "\"Bus 01  Device   1 Port 00\"",
                          "\"Bus 01  Device   1\", port 0", "\"Bus 01  Device   1 Port 00\", port 0",
                          "\"Bus 01  Device   2 Port 00\""));
}

TEST(Place, PlacesWhatHasNoNumberByItsIdentifier) {
  InventoryBuilder machine;
  machine.AddBus(1, 1);
  for (const char* identifier : {"Bus x  Device   1", "Bus 1234567890  Device   1", "", "Bus   Device 1"}) {
    machine.Last("KALDO_USBController")["DeviceID"] = identifier;
    EXPECT_EQ(PlacesOf(machine)[0], "\"" + std::string(identifier) + "\"");
  }
}

TEST(Place, PassesOverLinksThatLeadNowhere) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 1), 0, 2);
  machine.Last("KALDO_USBConnection")["Antecedent"] =
      R"(KALDO_USBPort.CreationClassName="KALDO_USBPort",DeviceID="other",SystemCreationClassName="S",SystemName="h")";
  EXPECT_EQ(PlacesOf(machine).back(), "\"Bus 01  Device   1 Port 00\"");
}

TEST(Place, TakesTheFirstOfTwoParents) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 2), 1, 2);
  nlohmann::json second = machine.Last("KALDO_USBConnection");
  second["Antecedent"] = machine.Document()["classes"]["KALDO_USBPortOnHub"][0]["Dependent"];
  machine.Document()["classes"]["KALDO_USBConnection"].push_back(second);
  EXPECT_EQ(PlacesOf(machine).back(), "bus 1, port 1");
}

TEST(Place, KeepsControllersAtTheirBus) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 1), 0, 2);
  machine.Last("KALDO_USBConnection")["Dependent"] = machine.Read().Controllers().front().Path();
  EXPECT_EQ(PlacesOf(machine).front(), "bus 1");
}

TEST(Place, PutsItemsLinkedInACircleAtTheTopEachByItself) {
  InventoryBuilder machine;
  const std::string hub = machine.AddHub(machine.AddBus(1, 1), 0, 2, 1);
  machine.AddDevice(hub, 0, 3);
  nlohmann::json& connections = machine.Document()["classes"]["KALDO_USBConnection"];
  connections[0]["Antecedent"] = connections[1]["Antecedent"];
  EXPECT_THAT(PlacesOf(machine),
              ElementsAre("bus 1", "bus 1", "\"Bus 01  Device   1 Port 00\"", "bus 1, port 0",
                          "\"Bus 01  Device   2 Port 00\"", "\"Bus 01  Device   2 Port 00\""));
}

TEST(Place, BeginsPlacesAfreshBelowThirtyTwoPorts) {
  InventoryBuilder machine;
  std::string hub = machine.AddBus(1, 1);
  for (int number = 2; number < 40; ++number) hub = machine.AddHub(hub, 0, number, 1);
  const Inventory inventory = machine.Read();
  std::size_t longest = 0;
  const cli::UsbTree tree(inventory);
  for (const cli::UsbTreeNode& node : tree.Nodes()) {
    longest = std::max(longest, node.place.ports.size());
  }
  EXPECT_EQ(longest, 32U);
  EXPECT_EQ(PlacesOf(machine).back(), "\"Bus 01  Device  33 Port 00\", port 0.0.0.0.0.0");
}

TEST(Place, HoldsEveryItemOfEveryCaptureOnce) {
  for (const std::string& name : CaptureNames()) {
    const Inventory inventory = cli::FromJson(Expected(name + ".json"), name);
    const cli::UsbTree tree(inventory);
    std::vector<std::size_t> nodes = tree.TopDown();
    std::sort(nodes.begin(), nodes.end());
    ASSERT_EQ(nodes.size(), inventory.Controllers().size() + inventory.Hubs().size() +
                                inventory.Ports().size() + inventory.Devices().size())
        << name;
    for (std::size_t index = 0; index < nodes.size(); ++index) EXPECT_EQ(nodes[index], index) << name;
  }
}

TEST(Place, OrdersNumbersAsNumbersAndUnknownBusesLast) {
  const Place places[] = {{true, 2, "", {}},    {true, 2, "", {9}}, {true, 2, "", {9, 1}},
                          {true, 2, "", {10}},  {true, 10, "", {}}, {false, 0, "a", {}},
                          {false, 0, "a", {1}}, {false, 0, "b", {}}};
  for (const Place& left : places) {
    for (const Place& right : places) EXPECT_EQ(left < right, &left < &right);
  }
}

}  // namespace
}  // namespace usbinfo_test
