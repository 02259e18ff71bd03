// How a selection is parsed, and which part of an inventory it selects: on inventories made by hand, and for
// every hub and device of every capture.
#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "cli/model/Selection.h"
#include "cli/model/UsbTree.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::ClassId;
using cli::Inventory;
using cli::ParseBusDevice;
using cli::ParseVendorProduct;
using cli::PropertyId;
using cli::Select;
using cli::Selection;
using NKESTA20::TCIMValue;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

constexpr ClassId kEntities[] = {ClassId::kController, ClassId::kHub, ClassId::kPort, ClassId::kDevice};

Selection ByIds(const std::string& ids) {
  Selection selection;
  const auto parsed = ParseVendorProduct(ids);
  EXPECT_TRUE(parsed) << ids;
  if (parsed) selection.ids.push_back(*parsed);
  return selection;
}

Selection ByPlace(const std::string& place) {
  Selection selection;
  selection.place = ParseBusDevice(place);
  EXPECT_TRUE(selection.place) << place;
  return selection;
}

Selection ByClass(const std::vector<std::string>& names) {
  Selection selection;
  for (const std::string& name : names) selection.classes.push_back(schema::FindClass(name)->id);
  return selection;
}

class SelectionTest : public CliTest {
 protected:
  void AddIds(const char* className, const std::string& deviceId, int vendor, int product) {
    CommitEntity(className, deviceId,
                 {{"VendorID", TCIMValue(static_cast<unsigned short>(vendor))},
                  {"USBDeviceID", TCIMValue(static_cast<unsigned short>(product))}});
  }

  /// A line per selected instance except links: the class's last word, the identifier.
  std::vector<std::string> Selected(const Selection& selection, bool keepsPath = false) const {
    const Inventory inventory = Select(Collected(), selection, keepsPath);
    std::vector<std::string> lines;
    for (const ClassId classId : kEntities) {
      for (const cli::Item& item : inventory.Of(classId).items) {
        lines.push_back(item.Schema().name.substr(sizeof("KALDO_USB") - 1) + " " +
                        item.String(PropertyId::kDeviceID));
      }
    }
    return lines;
  }
};

TEST(VendorProduct, AreHexadecimalAndEitherMayBeLeftOut) {
  EXPECT_EQ(ParseVendorProduct("1d6b:")->vendor, 0x1D6B);
  EXPECT_FALSE(ParseVendorProduct("1d6b:")->product);
  EXPECT_EQ(ParseVendorProduct("1D6B:0002")->product, 2);
  EXPECT_EQ(ParseVendorProduct("0:ffff")->product, 0xFFFF);
  EXPECT_EQ(ParseVendorProduct("0x0409:0X55aa")->vendor, 0x409);
  EXPECT_EQ(ParseVendorProduct("0x0409:0X55aa")->product, 0x55AA);
  EXPECT_FALSE(ParseVendorProduct(":0002")->vendor);
  EXPECT_EQ(ParseVendorProduct(":0002")->product, 2);
  EXPECT_FALSE(ParseVendorProduct("x:"));
  EXPECT_FALSE(ParseVendorProduct(":"));
}

TEST(BusDevice, IsABusADeviceOrBothInDecimal) {
  EXPECT_EQ(ParseBusDevice("010:")->bus, 10U);
  EXPECT_FALSE(ParseBusDevice("1:")->device);
  EXPECT_FALSE(ParseBusDevice(":3")->bus);
  EXPECT_EQ(ParseBusDevice(":3")->device, 3U);
  EXPECT_FALSE(ParseBusDevice("003")->bus);
  EXPECT_EQ(ParseBusDevice("003")->device, 3U);
  EXPECT_EQ(ParseBusDevice("123:127")->bus, 123U);
  EXPECT_EQ(ParseBusDevice("123:127")->device, 127U);
  EXPECT_FALSE(ParseBusDevice("0x1:"));
}

TEST(DescriptionOfASelection, SpellsTheOptions) {
  EXPECT_EQ(cli::Describe({}), "");
  EXPECT_EQ(cli::Describe(ByIds("0xAB:")), "-d 00ab:");
  EXPECT_EQ(cli::Describe(ByIds("ab:1")), "-d 00ab:0001");
  EXPECT_EQ(cli::Describe(ByPlace("001:002")), "-s 1:2");
  EXPECT_EQ(cli::Describe(ByPlace("3")), "-s :3");
  EXPECT_EQ(cli::Describe(ByPlace(":")), "-s :");
  Selection all = ByIds("1:");
  all.place = ParseBusDevice("2:");
  all.ids.push_back({std::nullopt, 2});
  all.classes = {ClassId::kHub, ClassId::kPort};
  EXPECT_EQ(cli::Describe(all), "-d 0001: -d :0002 -s 2: --class KALDO_USBHub --class KALDO_USBPort");
}

TEST_F(SelectionTest, ByIdsTakesWhatMatchesAnyOfThem) {
  AddIds("KALDO_USBDevice", "Bus 01  Device   1", 1, 1);
  AddIds("KALDO_USBDevice", "Bus 01  Device   2", 2, 1);
  AddIds("KALDO_USBDevice", "Bus 01  Device   3", 3, 3);
  Selection selection = ByIds("1:");
  selection.ids.push_back({std::nullopt, 3});
  EXPECT_THAT(Selected(selection), ElementsAre("Device Bus 01  Device   1", "Device Bus 01  Device   3"));
}

TEST_F(SelectionTest, OfNothingIsEverything) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  const Inventory all = Collected();
  const Inventory same = Select(all, {}, false);
  for (std::size_t index = 0; index < all.Classes().size(); ++index) {
    EXPECT_EQ(same.Classes()[index].items.size(), all.Classes()[index].items.size());
  }
}

TEST_F(SelectionTest, ByIdsTakesHubsAndDevicesAlike) {
  AddIds("KALDO_USBHub", "Bus 01  Device   1", 0x1D6B, 2);
  AddIds("KALDO_USBHub", "Bus 01  Device   2", 0x1D6B, 3);
  AddIds("KALDO_USBDevice", "Bus 01  Device   3", 0x1D6B, 2);
  AddIds("KALDO_USBDevice", "Bus 01  Device   4", 0x1D6C, 2);
  EXPECT_THAT(Selected(ByIds("1d6b:")),
              ElementsAre("Hub Bus 01  Device   1", "Hub Bus 01  Device   2", "Device Bus 01  Device   3"));
  EXPECT_THAT(Selected(ByIds("1d6b:2")), ElementsAre("Hub Bus 01  Device   1", "Device Bus 01  Device   3"));
  EXPECT_THAT(Selected(ByIds("2:")), IsEmpty());
}

TEST_F(SelectionTest, ByIdsPassesOverWhatHasNone) {
  AddDevice("Bus 01  Device   2", "d", 1);
  AddIds("KALDO_USBDevice", "Bus 01  Device   3", 0, 0);
  EXPECT_THAT(Selected(ByIds("0:0")), ElementsAre("Device Bus 01  Device   3"));
}

TEST_F(SelectionTest, ByPlaceTakesNumbersWhateverTheirZerosAndBlanks) {
  AddDevice("Bus 123  Device 127", "d", 1);
  AddDevice("Bus 12  Device  12", "d", 1);
  AddDevice("Bus 1 Device 2", "d", 1);
  AddHub("Bus 01  Device   1", "h", 1);
  EXPECT_THAT(Selected(ByPlace("123:127")), ElementsAre("Device Bus 123  Device 127"));
  EXPECT_THAT(Selected(ByPlace("12:")), ElementsAre("Device Bus 12  Device  12"));
  EXPECT_THAT(Selected(ByPlace("012:0012")), ElementsAre("Device Bus 12  Device  12"));
  EXPECT_THAT(Selected(ByPlace("1:")), ElementsAre("Hub Bus 01  Device   1", "Device Bus 1 Device 2"));
  EXPECT_THAT(Selected(ByPlace("2")), ElementsAre("Device Bus 1 Device 2"));
  EXPECT_THAT(Selected(ByPlace("3:1")), IsEmpty());
}

TEST_F(SelectionTest, ByPlacePassesOverAForgedPlaceButForAnyPlace) {
  AddDevice("Bus 01x  Device   2", "d", 1);
  AddDevice("", "d", 1);
  EXPECT_THAT(Selected(ByPlace("1:")), IsEmpty());
  EXPECT_THAT(Selected(ByPlace("0:0")), IsEmpty());
  EXPECT_THAT(Selected(ByPlace("2")), ElementsAre("Device Bus 01x  Device   2"));
  EXPECT_THAT(Selected(ByPlace(":")), ElementsAre("Device Bus 01x  Device   2", "Device "));
}

TEST_F(SelectionTest, ByPlaceTakesNoControllerAndNoPort) {
  AddController("Bus 01  Device   1", "c");
  AddPort("Bus 01  Device   1 Port 00", 1, "x");
  EXPECT_THAT(Selected(ByPlace("1:1")), IsEmpty());
  EXPECT_THAT(Selected(ByPlace(":")), IsEmpty());
}

TEST_F(SelectionTest, RequiresAllConditions) {
  AddIds("KALDO_USBHub", "Bus 01  Device   1", 1, 1);
  AddIds("KALDO_USBDevice", "Bus 01  Device   2", 1, 1);
  AddIds("KALDO_USBDevice", "Bus 02  Device   2", 1, 1);
  AddIds("KALDO_USBDevice", "Bus 01  Device   3", 2, 1);
  Selection selection = ByIds("1:");
  selection.place = ParseBusDevice("1:");
  EXPECT_THAT(Selected(selection), ElementsAre("Hub Bus 01  Device   1", "Device Bus 01  Device   2"));
  selection.classes = {ClassId::kDevice};
  EXPECT_THAT(Selected(selection), ElementsAre("Device Bus 01  Device   2"));
  selection.classes = {ClassId::kPort};
  EXPECT_THAT(Selected(selection), IsEmpty());
}

TEST_F(SelectionTest, ByClassLeavesTheOthersEmptyAndKeepsTheTotals) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  const Inventory all = Collected();
  for (const cli::ItemsOfClass& chosen : all.Classes()) {
    for (const bool keepsPath : {false, true}) {
      const Inventory part = Select(all, ByClass({chosen.schema->name}), keepsPath);
      ASSERT_EQ(part.Classes().size(), 6U);
      for (const cli::ItemsOfClass& view : part.Classes()) {
        const bool isChosen = view.schema == chosen.schema;
        EXPECT_EQ(view.items.size(), isChosen ? chosen.items.size() : 0U) << view.schema->name;
        EXPECT_EQ(view.total, all.Of(view.schema->id).items.size());
      }
    }
  }
}

TEST_F(SelectionTest, ByClassAndPlaceKeepsNoPath) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  Selection selection = ByPlace("1:4");
  selection.classes = {ClassId::kDevice};
  EXPECT_THAT(Selected(selection, true), ElementsAre("Device Bus 01  Device   4"));
}

TEST_F(SelectionTest, KeepsThePathToADeviceAndTheLinksAlongIt) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  EXPECT_THAT(Selected(ByPlace("1:4"), true),
              ElementsAre("Controller Bus 01  Device   1", "Hub Bus 01  Device   1", "Hub Bus 01  Device   2",
                          "Port Bus 01  Device   1 Port 02", "Port Bus 01  Device   2 Port 00",
                          "Device Bus 01  Device   4"));
  const Inventory part = Select(Collected(), ByPlace("1:4"), true);
  EXPECT_EQ(part.PortsOnHubs().size(), 2U);
  EXPECT_EQ(part.Connections().size(), 2U);
}

TEST_F(SelectionTest, KeepsNoPathToWhatDoesNotMatch) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  EXPECT_TRUE(Select(Collected(), ByIds("dead:"), true).IsEmpty());
}

TEST_F(SelectionTest, KeepsNothingAboveAnItemThatIsLinkedInACircle) {
  Path hub = AddHub("Bus 01  Device   2", "h", 1);
  Path port = AddPort("Bus 01  Device   2 Port 00", 1, "x");
  Associate("KALDO_USBPortOnHub", hub, port);
  Associate("KALDO_USBConnection", port, hub);
  EXPECT_THAT(Selected(ByPlace("1:2"), true), ElementsAre("Hub Bus 01  Device   2"));
}

/// For each item its parent, both by their paths; empty for an item at the top.
std::map<std::string, std::string> ParentsIn(const Inventory& inventory) {
  const cli::UsbTree tree(inventory);
  std::map<std::string, std::string> parents;
  for (const cli::UsbTreeNode& node : tree.Nodes()) parents[node.item->Path()];
  for (const cli::UsbTreeNode& node : tree.Nodes()) {
    for (const std::size_t child : node.children) {
      parents[tree.Nodes()[child].item->Path()] = node.item->Path();
    }
  }
  return parents;
}

TEST_F(SelectionTest, KeepsTheWholePathToEveryItemOfEveryCaptureAndNothingElse) {
  for (const std::string& path : CapturePaths()) {
    host.Reset();
    Collect(ReadFile(path));
    const Inventory all = Collected();
    const auto parents = ParentsIn(all);
    for (const ClassId classId : {ClassId::kHub, ClassId::kDevice}) {
      for (const cli::Item& item : all.Of(classId).items) {
        std::string place = item.String(PropertyId::kDeviceID).substr(sizeof("Bus ") - 1);
        place.replace(place.find(' '), place.find_last_of(' ') + 1 - place.find(' '), ":");
        std::map<std::string, std::string> above;
        for (std::string at = item.Path(); !at.empty(); at = parents.at(at)) above[at] = parents.at(at);
        EXPECT_EQ(ParentsIn(Select(all, ByPlace(place), true)), above) << path << " " << place;
      }
    }
  }
}

TEST(SelectedInventory, SaysInItsOriginWhatWasSelectedInAll) {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 1), 0, 2, {"Stick", "S1", 0xABCD, 1});
  EXPECT_EQ(Select(machine.Read(), ByIds("abcd:"), true).GetOrigin(), std::nullopt);
  machine.Document()["origin"] = OriginExample();
  machine.Document()["origin"]["selection"] = nullptr;
  const auto selected = [](const Inventory& inventory) { return inventory.GetOrigin()->selection; };
  const Inventory whole = machine.Read();
  EXPECT_EQ(selected(Select(whole, {}, true)), std::nullopt);
  const Inventory part = Select(whole, ByIds("abcd:"), true);
  EXPECT_EQ(selected(part), (cli::SelectedBy{{}, {"abcd:"}, {}}));
  const Inventory less = Select(Select(part, ByPlace(":2"), true), ByIds("abcd:"), true);
  EXPECT_EQ(selected(Select(less, ByClass({"KALDO_USBDevice"}), true)),
            (cli::SelectedBy{{"KALDO_USBDevice"}, {"abcd:"}, {":2"}}));
}

}  // namespace
}  // namespace usbinfo_test
