// What is read from a saved inventory, and each way in which a document is refused: the message names the
// place and what belongs there.
#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <string>

#include "cli/model/SavedInventory.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::ItemKind;
using cli::SavedInventory;
using nlohmann::json;

namespace usbinfo_test {
namespace {

constexpr const char* kAdvice = "; save it anew with usbinfo --format json";

InventoryBuilder SmallMachine() {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 2), 0, 2, {"Stick", "S1", 0xABCD, 1});
  return machine;
}

TEST(SavedInventory, HoldsItemsAndLinksOfItsDocument) {
  const SavedInventory inventory = SmallMachine().Saved();
  EXPECT_EQ(inventory.systemName, "testhost");
  ASSERT_EQ(inventory.items.size(), 5U);
  EXPECT_EQ(inventory.items[0].kind, ItemKind::kController);
  EXPECT_EQ(inventory.items[1].kind, ItemKind::kHub);
  EXPECT_EQ(inventory.items[3].Text("DeviceID"), "Bus 01  Device   1 Port 01");
  EXPECT_EQ(inventory.items[4].Number("VendorID"), 0xABCDU);
  ASSERT_EQ(inventory.links.size(), 3U);
  EXPECT_EQ(inventory.links[0].antecedent, cli::PathOf(inventory.items[1]));
  EXPECT_EQ(inventory.links[2].dependent, cli::PathOf(inventory.items[4]));
}

TEST(SavedInventory, GivesNothingForAPropertyThatIsNotThere) {
  const SavedInventory inventory = SmallMachine().Saved();
  EXPECT_EQ(inventory.items[0].Text("SerialNumber"), "");
  EXPECT_EQ(inventory.items[0].Number("VendorID"), 0U);
}

TEST(SavedInventory, NamesPathsAsTheLinksOfEveryCaptureDo) {
  for (const std::string& name : CaptureNames()) {
    const SavedInventory inventory = cli::ReadSavedInventory(Expected(name + ".json"), name);
    std::vector<std::string> paths;
    for (const cli::SavedItem& item : inventory.items) paths.push_back(cli::PathOf(item));
    for (const cli::SavedLink& link : inventory.links) {
      EXPECT_THAT(paths, testing::Contains(link.antecedent));
      EXPECT_THAT(paths, testing::Contains(link.dependent));
    }
  }
}

TEST(SavedInventory, SpellsQuotesAndBackslashesOfAPath) {
  InventoryBuilder machine = SmallMachine();
  machine.Last("KALDO_USBDevice")["DeviceID"] = "a\"b\\c";
  EXPECT_THAT(cli::PathOf(machine.Saved().items[4]), testing::HasSubstr(R"(DeviceID="a\"b\\c",)"));
}

TEST(SavedInventory, IsJsonWhereTheFirstByteThatIsNoBlankOpensAnObject) {
  EXPECT_TRUE(cli::LooksLikeJson("{}"));
  EXPECT_TRUE(cli::LooksLikeJson(" \t\r\n{"));
  EXPECT_FALSE(cli::LooksLikeJson("T:  Bus=01 {"));
  EXPECT_FALSE(cli::LooksLikeJson("[{}]"));
  EXPECT_FALSE(cli::LooksLikeJson(""));
  EXPECT_FALSE(cli::LooksLikeJson(" \n"));
}

struct Damage {
  const char* name;
  std::function<void(InventoryBuilder&)> make;
  std::string message;
};

std::ostream& operator<<(std::ostream& out, const Damage& damage) {
  return out << damage.name;
}

json& Device(InventoryBuilder& machine) {
  return machine.Last("KALDO_USBDevice");
}

constexpr const char* kDevicePointer = "/classes/KALDO_USBDevice/0";

const Damage kDamages[] = {
    {"NoObject", [](auto& it) { it.Document() = json::array(); }, "the document: must be an object"},
    {"NoSchema", [](auto& it) { it.Document().erase("schema"); }, "/schema: is missing"},
    {"OtherSchema", [](auto& it) { it.Document()["schema"] = "usbinfo.diff/1"; },
     "/schema: must be \"usbinfo.inventory/1\""},
    {"NewerSchema",
     [](auto& it) {
       it.Document() = {{"schema", "usbinfo.inventory/2"}, {"more", 1}};
     },
     "/schema: must be \"usbinfo.inventory/1\""},
    {"NoSystem", [](auto& it) { it.Document().erase("system"); }, "/system: is missing"},
    {"SystemAsText", [](auto& it) { it.Document()["system"] = "name"; }, "/system: must be an object"},
    {"SystemNameAsNumber", [](auto& it) { it.Document()["system"]["name"] = 1; },
     "/system/name: must be a text"},
    {"OtherSystemClass", [](auto& it) { it.Document()["system"]["creationClassName"] = "Other"; },
     "/system/creationClassName: must be \"KALDO_ComputerSystem\""},
    {"UnknownMember", [](auto& it) { it.Document()["a/b"] = 1; }, "/a~1b: is no member of an inventory"},
    {"NoClass", [](auto& it) { it.Document()["classes"].erase("KALDO_USBPort"); },
     "/classes/KALDO_USBPort: is missing"},
    {"UnknownClass", [](auto& it) { it.Document()["classes"]["Other"] = json::array(); },
     "/classes/Other: is no member of an inventory"},
    {"ClassAsObject", [](auto& it) { it.Document()["classes"]["KALDO_USBPort"] = json::object(); },
     "/classes/KALDO_USBPort: must be a list"},
    {"InstanceAsNull", [](auto& it) { Device(it) = nullptr; },
     std::string(kDevicePointer) + ": must be an object"},
    {"UnknownProperty", [](auto& it) { Device(it)["Other"] = 1; },
     std::string(kDevicePointer) + "/Other: is no property of a KALDO_USBDevice"},
    {"PropertyOfAnotherClass", [](auto& it) { Device(it)["NumberOfPorts"] = 1; },
     std::string(kDevicePointer) + "/NumberOfPorts: is no property of a KALDO_USBDevice"},
    {"NoKey", [](auto& it) { Device(it).erase("DeviceID"); },
     std::string(kDevicePointer) + "/DeviceID: is missing"},
    {"NoNumber", [](auto& it) { Device(it).erase("VendorID"); },
     std::string(kDevicePointer) + "/VendorID: is missing"},
    {"NumberAsText", [](auto& it) { Device(it)["VendorID"] = "1"; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NegativeNumber", [](auto& it) { Device(it)["VendorID"] = -1; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"Fraction", [](auto& it) { Device(it)["VendorID"] = 1.5; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NumberBeyondSixteenBits", [](auto& it) { Device(it)["VendorID"] = 65536; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NumberBeyondEightBits", [](auto& it) { Device(it)["Speed"] = 256; },
     std::string(kDevicePointer) + "/Speed: must be a whole number from 0 to 255"},
    {"NumberBeyondSixtyFourBits",
     [](auto& it) { it.Last("KALDO_USBPort")["Speed"] = 18446744073709551616.0; },
     "/classes/KALDO_USBPort/1/Speed: must be a whole number from 0 to 18446744073709551615"},
    {"TextAsNumber", [](auto& it) { Device(it)["SerialNumber"] = 1; },
     std::string(kDevicePointer) + "/SerialNumber: must be a text"},
    {"ListAsText", [](auto& it) { it.Last("KALDO_USBPort")["StatusDescriptions"] = "x"; },
     "/classes/KALDO_USBPort/1/StatusDescriptions: must be a list"},
    {"ListOfNumbers",
     [](auto& it) {
       it.Last("KALDO_USBPort")["StatusDescriptions"] = {"x", 1};
     },
     "/classes/KALDO_USBPort/1/StatusDescriptions/1: must be a text"},
    {"OtherCreationClass", [](auto& it) { Device(it)["CreationClassName"] = "KALDO_USBHub"; },
     std::string(kDevicePointer) + "/CreationClassName: must be \"KALDO_USBDevice\""},
    {"LinkWithoutEnd", [](auto& it) { it.Last("KALDO_USBConnection").erase("Dependent"); },
     "/classes/KALDO_USBConnection/0/Dependent: is missing"},
    {"LinkToAnotherClass",
     [](auto& it) { it.Last("KALDO_USBConnection")["Antecedent"] = "KALDO_USBHub.a=1"; },
     "/classes/KALDO_USBConnection/0/Antecedent: must be the object path of a KALDO_USBPort"},
    {"LinkToNoEntity",
     [](auto& it) { it.Last("KALDO_USBConnection")["Dependent"] = "KALDO_USBConnection.a=1"; },
     "/classes/KALDO_USBConnection/0/Dependent: must be the object path of a KALDO_USBElement"},
    {"LinkToABareClass", [](auto& it) { it.Last("KALDO_USBConnection")["Dependent"] = "KALDO_USBHub"; },
     "/classes/KALDO_USBConnection/0/Dependent: must be the object path of a KALDO_USBElement"},
};

class DamagedInventory : public testing::TestWithParam<Damage> {};

TEST_P(DamagedInventory, IsRefusedWithItsPlace) {
  InventoryBuilder machine = SmallMachine();
  GetParam().make(machine);
  EXPECT_EQ(UserErrorOf([&] { machine.Saved(); }),
            "built holds no inventory: " + GetParam().message + kAdvice);
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedInventory, testing::ValuesIn(kDamages),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SavedInventory, MayLackWhatADeviceDoesNotSend) {
  InventoryBuilder machine = SmallMachine();
  for (const char* name : {"Description", "HubName", "Manufacturer", "PortNumber", "SerialNumber"}) {
    Device(machine).erase(name);
  }
  machine.Last("KALDO_USBPort").erase("Speed");
  machine.Last("KALDO_USBController").erase("Description");
  EXPECT_EQ(machine.Saved().items.size(), 5U);
}

TEST(SavedInventory, TellsWhatIsNoJsonByItsPlaceInTheText) {
  const std::string text = SmallMachine().Text();
  EXPECT_EQ(UserErrorOf([&] { cli::ReadSavedInventory(text.substr(0, text.size() - 1), "file"); }),
            "file holds no inventory: line 1, column " + std::to_string(text.size()) +
                ": the document ends too early" + kAdvice);
  EXPECT_EQ(UserErrorOf([] { cli::ReadSavedInventory("{\"schema\": 1, \"schema\": 2}", "file"); }),
            std::string("file holds no inventory: /schema: stands there twice") + kAdvice);
}

TEST(SavedInventory, IsRefusedWhereverItIsCutOff) {
  const std::string text = SmallMachine().Text();
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_NE(UserErrorOf([&] { cli::ReadSavedInventory(text.substr(0, size), "file"); }), "") << size;
  }
}

}  // namespace
}  // namespace usbinfo_test
