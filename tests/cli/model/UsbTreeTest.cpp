// How instances are connected: what the associations link, where unlinked items are, and that no item is lost
// or shown twice.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "cli/model/UsbTree.h"
#include "tests/cli/support/CliTest.h"

using cli::Inventory;
using cli::UsbTree;
using cli::UsbTreeNode;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

constexpr const char* kPortOnHub = "KALDO_USBPortOnHub";
constexpr const char* kConnection = "KALDO_USBConnection";

class UsbTreeTest : public CliTest {
 protected:
  /// A line per node, parents before their children: the depth, the kind's first letter, the identifier.
  std::vector<std::string> Outline() {
    const Inventory inventory = Collected();
    const UsbTree tree(inventory);
    std::vector<std::string> lines;
    for (const std::size_t top : tree.Top()) Add(lines, tree, top, 0);
    return lines;
  }

 private:
  static void Add(std::vector<std::string>& lines, const UsbTree& tree, std::size_t index, int depth) {
    const UsbTreeNode& node = tree.Nodes()[index];
    const char letter = "chpd"[static_cast<int>(node.Class())];
    lines.push_back(std::to_string(depth) + " " + letter + " " +
                    node.item->String(cli::PropertyId::kDeviceID));
    for (const std::size_t child : node.children) Add(lines, tree, child, depth + 1);
  }
};

TEST_F(UsbTreeTest, IsEmptyForAnEmptyInventory) {
  const Inventory inventory = Collected();
  const UsbTree tree(inventory);
  EXPECT_THAT(tree.Nodes(), IsEmpty());
  EXPECT_THAT(tree.Top(), IsEmpty());
}

TEST_F(UsbTreeTest, PutsTheRootHubBelowTheControllerOfTheSameIdentifier) {
  AddHub("Bus 02  Device   1", "", 0);
  AddHub("Bus 01  Device   1", "", 0);
  AddController("Bus 01  Device   1", "");
  AddController("Bus 02  Device   1", "");
  EXPECT_THAT(Outline(), ElementsAre("0 c Bus 01  Device   1", "1 h Bus 01  Device   1",
                                     "0 c Bus 02  Device   1", "1 h Bus 02  Device   1"));
}

TEST_F(UsbTreeTest, PutsPortsBelowTheirHubAndWhatIsPluggedInBelowThePort) {
  AddController("root", "");
  Path root = AddHub("root", "", 2);
  Path hub = AddHub("hub", "", 1);
  Path first = AddPort("root Port 00", 1, "x");
  Path second = AddPort("root Port 01", 1, "x");
  Path inner = AddPort("hub Port 00", 1, "x");
  Path device = AddDevice("device", "", 1);
  Associate(kPortOnHub, root, first);
  Associate(kPortOnHub, root, second);
  Associate(kPortOnHub, hub, inner);
  Associate(kConnection, inner, device);
  Associate(kConnection, second, hub);
  EXPECT_THAT(Outline(), ElementsAre("0 c root", "1 h root", "2 p root Port 00", "2 p root Port 01",
                                     "3 h hub", "4 p hub Port 00", "5 d device"));
}

TEST_F(UsbTreeTest, MarksTheHubOfAControllerAsRootHub) {
  AddController("root", "");
  AddHub("root", "", 1);
  AddHub("other", "", 1);
  const Inventory inventory = Collected();
  const UsbTree tree(inventory);
  for (const UsbTreeNode& node : tree.Nodes()) {
    const bool isRootHub =
        node.Class() == cli::ClassId::kHub && node.item->String(cli::PropertyId::kDeviceID) == "root";
    EXPECT_EQ(node.isRootHub, isRootHub) << node.item->Path();
  }
}

TEST_F(UsbTreeTest, KeepsSeveralDevicesOnOnePortInTheOrderOfTheirConnections) {
  Path port = AddPort("port", 1, "x");
  Path early = AddDevice("early", "", 1);
  Path late = AddDevice("late", "", 1);
  Associate(kConnection, port, late);
  Associate(kConnection, port, early);
  EXPECT_THAT(Outline(), ElementsAre("0 p port", "1 d late", "1 d early"));
}

TEST_F(UsbTreeTest, PutsWhatIsNotLinkedAtTheTopAfterTheControllers) {
  AddDevice("device", "", 1);
  AddPort("port", 1, "x");
  AddHub("hub", "", 1);
  AddController("controller", "");
  EXPECT_THAT(Outline(), ElementsAre("0 c controller", "0 h hub", "0 p port", "0 d device"));
}

TEST_F(UsbTreeTest, ShowsAnItemWithTwoParentsOnlyOnce) {
  Path one = AddPort("one", 1, "x");
  Path two = AddPort("two", 1, "x");
  Path device = AddDevice("device", "", 1);
  Associate(kConnection, two, device);
  Associate(kConnection, one, device);
  EXPECT_THAT(Outline(), ElementsAre("0 p one", "0 p two", "1 d device"));
}

TEST_F(UsbTreeTest, PassesOverAnAssociationWithSomethingThatIsNotThere) {
  Path port = AddPort("port", 1, "x");
  Path lost = AddDevice("device", "", 1);
  host.Reset();
  Path device = AddDevice("other", "", 1);
  Associate(kConnection, port, device);
  Associate(kConnection, device, lost);
  EXPECT_THAT(Outline(), ElementsAre("0 d other"));
}

TEST_F(UsbTreeTest, PutsItemsLinkedInACircleAtTheTopSoThatNoneIsLost) {
  Path hub = AddHub("hub", "", 1);
  Path port = AddPort("port", 1, "x");
  Associate(kPortOnHub, hub, port);
  Associate(kConnection, port, hub);
  EXPECT_THAT(Outline(), ElementsAre("0 h hub", "0 p port"));
}

TEST_F(UsbTreeTest, HoldsEveryItemOfEveryCaptureOnce) {
  for (const std::string& path : CapturePaths()) {
    host.Reset();
    Collect(ReadFile(path));
    const Inventory inventory = Collected();
    const std::size_t items = inventory.Controllers().size() + inventory.Hubs().size() +
                              inventory.Ports().size() + inventory.Devices().size();
    EXPECT_EQ(Outline().size(), items) << path;
  }
}

TEST_F(UsbTreeTest, HasNoRowForWhatAPortAloneShows) {
  Path hub = AddHub("hub", "", 2);
  Path port = AddPort("port", 1, "x");
  Path crowded = AddPort("crowded", 1, "x");
  Associate(kPortOnHub, hub, port);
  Associate(kPortOnHub, hub, crowded);
  Associate(kConnection, port, AddDevice("alone", "", 1));
  Associate(kConnection, crowded, AddDevice("one", "", 1));
  Associate(kConnection, crowded, AddDevice("other", "", 1));
  const Inventory inventory = Collected();
  const UsbTree tree(inventory);
  std::vector<std::string> rows;
  for (const cli::UsbTreeRow& row : tree.Rows()) {
    const UsbTreeNode& node = tree.Nodes()[row.node];
    rows.push_back(std::to_string(row.depth) + " " + node.item->String(cli::PropertyId::kDeviceID) +
                   " shows " + tree.Shown(node).item->String(cli::PropertyId::kDeviceID));
  }
  EXPECT_THAT(rows, ElementsAre("0 hub shows hub", "1 port shows alone", "1 crowded shows crowded",
                                "2 one shows one", "2 other shows other"));
}

}  // namespace
}  // namespace usbinfo_test
