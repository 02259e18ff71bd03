// What is read from a saved inventory, and each way in which a document is refused: the message names the
// place and what belongs there.
#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <set>
#include <string>

#include "cli/format/JsonFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/FromJson.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::Inventory;
using cli::PropertyId;
using nlohmann::json;

namespace usbinfo_test {
namespace {

constexpr const char* kAdvice = "; save it anew with usbinfo --format json";

InventoryBuilder SmallMachine() {
  InventoryBuilder machine;
  machine.AddDevice(machine.AddBus(1, 2), 0, 2, {"Stick", "S1", 0xABCD, 1});
  return machine;
}

TEST(FromJson, HoldsTheItemsAndLinksOfItsDocument) {
  const Inventory inventory = SmallMachine().Read();
  EXPECT_EQ(inventory.SystemName(), "testhost");
  EXPECT_EQ(inventory.Controllers().size(), 1U);
  EXPECT_EQ(inventory.Hubs().size(), 1U);
  EXPECT_EQ(inventory.Ports().at(1).String(PropertyId::kDeviceID), "Bus 01  Device   1 Port 01");
  EXPECT_EQ(inventory.Devices().at(0).Number(PropertyId::kVendorID), 0xABCDU);
  EXPECT_EQ(inventory.PortsOnHubs().at(0).String(PropertyId::kAntecedent), inventory.Hubs()[0].Path());
  EXPECT_EQ(inventory.Connections().at(0).String(PropertyId::kDependent), inventory.Devices()[0].Path());
}

TEST(FromJson, GivesNothingForAPropertyThatIsNotThere) {
  const Inventory inventory = SmallMachine().Read();
  EXPECT_EQ(inventory.Controllers()[0].String(PropertyId::kSerialNumber), "");
  EXPECT_EQ(inventory.Controllers()[0].Number(PropertyId::kVendorID), 0U);
}

TEST(FromJson, GivesTheInventoryThatWasSavedForEveryCapture) {
  for (const std::string& name : CaptureNames()) {
    const std::string saved = Expected(name + ".json");
    EXPECT_EQ(cli::RenderJson(cli::FromJson(saved, name), {}), saved) << name;
  }
}

TEST(FromJson, MakesPathsAsTheLinksOfEveryCaptureDo) {
  for (const std::string& name : CaptureNames()) {
    const Inventory inventory = cli::FromJson(Expected(name + ".json"), name);
    std::set<std::string> paths;
    for (const auto& ofClass : inventory.Classes()) {
      for (const cli::Item& item : ofClass.items) paths.insert(item.Path());
    }
    for (const auto* const links : {&inventory.PortsOnHubs(), &inventory.Connections()}) {
      for (const cli::Item& link : *links) {
        EXPECT_EQ(paths.count(link.String(PropertyId::kAntecedent)), 1U) << name;
        EXPECT_EQ(paths.count(link.String(PropertyId::kDependent)), 1U) << name;
      }
    }
  }
}

/// The state of the last port, of which the document says that no device is connected.
cli::PortState StateOfLastPort(const InventoryBuilder& machine) {
  const Inventory inventory = machine.Read();
  return inventory.StateOf(inventory.Ports().back());
}

TEST(FromJson, KnowsAFreePortWhereConnectionsWereCollected) {
  InventoryBuilder machine = SmallMachine();
  EXPECT_EQ(StateOfLastPort(machine), cli::PortState::kFree);
  machine.Document()["classes"]["KALDO_USBConnection"].clear();
  EXPECT_EQ(StateOfLastPort(machine), cli::PortState::kUnknown);
  machine.Document()["classes"]["KALDO_USBDevice"].clear();
  EXPECT_EQ(StateOfLastPort(machine), cli::PortState::kFree);
  machine.Document()["classes"]["KALDO_USBHub"].clear();
  EXPECT_EQ(StateOfLastPort(machine), cli::PortState::kUnknown);
}

TEST(FromJson, SpellsQuotesAndBackslashesOfAPath) {
  InventoryBuilder machine = SmallMachine();
  machine.Last("KALDO_USBDevice")["DeviceID"] = "a\"b\\c";
  EXPECT_THAT(machine.Read().Devices().at(0).Path(), testing::HasSubstr(R"(DeviceID="a\"b\\c",)"));
}

TEST(FromJson, IsJsonWhereTheFirstByteThatIsNoBlankOpensAnObject) {
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

json& SavedDevice(InventoryBuilder& machine) {
  return machine.Last("KALDO_USBDevice");
}

constexpr const char* kDevicePointer = "/classes/KALDO_USBDevice/0";

const Damage kDamages[] = {
    {"NoObject", [](auto& it) { it.Document() = json::array(); }, "the document: must be an object"},
    {"NoSchema", [](auto& it) { it.Document().erase("schema"); }, "/schema: is missing"},
    {"OtherSchema", [](auto& it) { it.Document()["schema"] = "usbinfo.diff/1"; },
     "/schema: must be \"usbinfo.inventory/2\""},
    {"NoVersion", [](auto& it) { it.Document()["schema"] = "usbinfo.inventory/02"; },
     "/schema: must be \"usbinfo.inventory/2\""},
    {"NoSystem", [](auto& it) { it.Document().erase("system"); }, "/system: is missing"},
    {"SystemAsText", [](auto& it) { it.Document()["system"] = "name"; }, "/system: must be an object"},
    {"SystemNameAsNumber", [](auto& it) { it.Document()["system"]["name"] = 1; },
     "/system/name: must be a text"},
    {"OtherSystemClass", [](auto& it) { it.Document()["system"]["creationClassName"] = "Other"; },
     "/system/creationClassName: must be \"KALDO_ComputerSystem\""},
    {"NoClass", [](auto& it) { it.Document()["classes"].erase("KALDO_USBPort"); },
     "/classes/KALDO_USBPort: is missing"},
    {"UnknownClass", [](auto& it) { it.Document()["classes"]["a/b"] = json::array(); },
     "/classes/a~1b: is not a member of an inventory"},
    {"ClassAsObject", [](auto& it) { it.Document()["classes"]["KALDO_USBPort"] = json::object(); },
     "/classes/KALDO_USBPort: must be a list"},
    {"InstanceAsNull", [](auto& it) { SavedDevice(it) = nullptr; },
     std::string(kDevicePointer) + ": must be an object"},
    {"UnknownProperty", [](auto& it) { SavedDevice(it)["Other"] = 1; },
     std::string(kDevicePointer) + "/Other: is not a property of a KALDO_USBDevice"},
    {"PropertyOfAnotherClass", [](auto& it) { SavedDevice(it)["NumberOfPorts"] = 1; },
     std::string(kDevicePointer) + "/NumberOfPorts: is not a property of a KALDO_USBDevice"},
    {"NoKey", [](auto& it) { SavedDevice(it).erase("DeviceID"); },
     std::string(kDevicePointer) + "/DeviceID: is missing"},
    {"NoNumber", [](auto& it) { SavedDevice(it).erase("VendorID"); },
     std::string(kDevicePointer) + "/VendorID: is missing"},
    {"NumberAsText", [](auto& it) { SavedDevice(it)["VendorID"] = "1"; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NegativeNumber", [](auto& it) { SavedDevice(it)["VendorID"] = -1; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"Fraction", [](auto& it) { SavedDevice(it)["VendorID"] = 1.5; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NumberBeyondSixteenBits", [](auto& it) { SavedDevice(it)["VendorID"] = 65536; },
     std::string(kDevicePointer) + "/VendorID: must be a whole number from 0 to 65535"},
    {"NumberBeyondEightBits", [](auto& it) { SavedDevice(it)["Speed"] = 256; },
     std::string(kDevicePointer) + "/Speed: must be a whole number from 0 to 255"},
    {"NumberBeyondSixtyFourBits",
     [](auto& it) { it.Last("KALDO_USBPort")["Speed"] = 18446744073709551616.0; },
     "/classes/KALDO_USBPort/1/Speed: must be a whole number from 0 to 18446744073709551615"},
    {"TextAsNumber", [](auto& it) { SavedDevice(it)["SerialNumber"] = 1; },
     std::string(kDevicePointer) + "/SerialNumber: must be a text"},
    {"ListAsText", [](auto& it) { it.Last("KALDO_USBPort")["StatusDescriptions"] = "x"; },
     "/classes/KALDO_USBPort/1/StatusDescriptions: must be a list"},
    {"ListOfNumbers",
     [](auto& it) {
       it.Last("KALDO_USBPort")["StatusDescriptions"] = {"x", 1};
     },
     "/classes/KALDO_USBPort/1/StatusDescriptions/1: must be a text"},
    {"OtherCreationClass", [](auto& it) { SavedDevice(it)["CreationClassName"] = "KALDO_USBHub"; },
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

/// A member of the origin or of the kernel's facts that is replaced, and what is wrong with it then.
struct Replaced {
  const char* pointer;
  json by;
  std::string message;
};

const Replaced kReplaced[] = {
    {"/origin", 1, "must be an object"},
    {"/origin/source", "usbfs", "must be one of \"sysfs\", \"plugin\", \"list\""},
    {"/origin/collected", "2026-11-21 12:00:00Z", "must be a time in UTC, such as \"2026-11-21T12:00:00Z\""},
    {"/origin/collected", "2026-11-21T12:00:00Z0", "must be a time in UTC, such as \"2026-11-21T12:00:00Z\""},
    {"/origin/program", nullptr, "must be a text"},
    {"/origin/machine", 1, "must be a text"},
    {"/origin/findings/0/lines/1", -1, "must be a whole number from 0 to 18446744073709551615"},
    {"/origin/repairs/0/count", "3", "must be a whole number from 0 to 18446744073709551615"},
    {"/origin/masked", true, "must be an object"},
    {"/origin/selection/ids", nullptr, "must be a list"},
    {"/kernel/devices", nullptr, "must be a list"},
    {"/kernel/devices/0/name", "1-03", "must be a name such as \"usb1\" or \"1-3.1\""},
    {"/kernel/devices/0/number", 65536, "must be a whole number from 0 to 65535"},
    {"/kernel/devices/0/speed", 2.5, "must be 1.5 or a whole number from 1 to 1000000"},
    {"/kernel/devices/0/speed", 0, "must be 1.5 or a whole number from 1 to 1000000"},
    {"/kernel/devices/0/speed", "480", "must be a number"},
    {"/kernel/devices/0/serial", 1, "must be a text"},
    {"/kernel/devices/0/interfaces/0/active", 1, "must be true or false"},
    {"/kernel/devices/0/interfaces/0/number", 256, "must be a whole number from 0 to 255"},
    {"/kernel/devices/0/interfaces/0/class", "0A", "must be two hexadecimal digits in lower case"},
    {"/kernel/devices/0/interfaces/0/protocol", "1", "must be two hexadecimal digits in lower case"},
    {"/kernel/devices/0/revision", "1.0", "must be a version such as \"1.10\""},
    {"/kernel/devices/0/nodes/0", nullptr, "must be a text"},
    {"/kernel/ports/0/peer", "usb2-port1", "must be a name such as \"usb1\" or \"1-3.1\""},
    {"/kernel/ports/0/state", "full", "must be one of \"used\", \"free\""},
};

json SavedWithFacts() {
  json document = SmallMachine().Document();
  document["origin"] = OriginExample();
  document["kernel"] = KernelExample();
  return document;
}

TEST(FromJson, RefusesAWrongValueInOriginAndKernelWithItsPlace) {
  for (const Replaced& replaced : kReplaced) {
    json document = SavedWithFacts();
    document[json::json_pointer(replaced.pointer)] = replaced.by;
    EXPECT_EQ(
        UserErrorOf([&] { cli::FromJson(document.dump(), "saved"); }),
        std::string("saved holds no inventory: ") + replaced.pointer + ": " + replaced.message + kAdvice);
  }
  json document = SavedWithFacts();
  document["kernel"]["devices"][0]["kinds"] = {"toaster"};
  EXPECT_THAT(UserErrorOf([&] { cli::FromJson(document.dump(), "saved"); }),
              testing::HasSubstr("/kernel/devices/0/kinds/0: must be one of \"hub\", \"keyboard\", "));
}

/// Every object below `value`, by its pointer.
void ForEachObject(const json& value, const std::string& pointer,
                   const std::function<void(const std::string&, const json&)>& take) {
  if (value.is_object()) take(pointer, value);
  if (!value.is_structured()) return;
  for (const auto& [name, member] : value.items()) ForEachObject(member, pointer + "/" + name, take);
}

TEST(FromJson, RefusesOriginAndKernelThatLackAMember) {
  for (const std::string part : {"/origin", "/kernel"}) {
    const json whole = SavedWithFacts();
    ForEachObject(whole[json::json_pointer(part)], part, [&](const std::string& pointer, const json& object) {
      for (const auto& [name, value] : object.items()) {
        json document = whole;
        document[json::json_pointer(pointer)].erase(name);
        EXPECT_EQ(UserErrorOf([&] { cli::FromJson(document.dump(), "saved"); }),
                  "saved holds no inventory: " + pointer + "/" + name + ": is missing" + kAdvice);
      }
    });
  }
}

TEST(FromJson, KeepsOriginAndKernelByteForByte) {
  const std::string saved = cli::RenderJson(cli::FromJson(SavedWithFacts().dump(), "built"), {});
  EXPECT_EQ(json::parse(saved), SavedWithFacts());
  EXPECT_EQ(cli::RenderJson(cli::FromJson(saved, "saved"), {}), saved);
}

TEST(FromJson, SkipsMembersThatItDoesNotKnowExceptInClasses) {
  const json whole = SavedWithFacts();
  const std::string rendered = cli::RenderJson(cli::FromJson(whole.dump(), "built"), {});
  ForEachObject(whole, "", [&](const std::string& pointer, const json&) {
    json document = whole;
    document[json::json_pointer(pointer)]["later"] = {{"a", 1}};
    const std::string text = document.dump();
    if (pointer.rfind("/classes", 0) == 0) {
      EXPECT_NE(UserErrorOf([&] { cli::FromJson(text, "saved"); }), "") << pointer;
    } else {
      EXPECT_EQ(cli::RenderJson(cli::FromJson(text, "saved"), {}), rendered) << pointer;
    }
  });
}

TEST(FromJson, TakesTheFirstVersionWithoutOriginAndKernel) {
  json document = SmallMachine().Document();
  const Inventory current = cli::FromJson(document.dump(), "built");
  document["schema"] = "usbinfo.inventory/1";
  document.erase("origin");
  document.erase("kernel");
  const Inventory first = cli::FromJson(document.dump(), "built");
  EXPECT_EQ(first.GetOrigin(), std::nullopt);
  EXPECT_EQ(first.Kernel(), std::nullopt);
  EXPECT_EQ(cli::RenderJson(first, {}), cli::RenderJson(current, {}));
}

TEST(FromJson, SaysThatADocumentIsOfALaterVersion) {
  EXPECT_EQ(
      UserErrorOf([] { cli::FromJson("{\"schema\": \"usbinfo.inventory/3\"}", "saved"); }),
      "saved was saved by a later version of usbinfo: its schema is usbinfo.inventory/3, and this version "
      "reads schemas up to usbinfo.inventory/2; update usbinfo, or save the inventory anew with this "
      "version");
}

class DamagedInventory : public testing::TestWithParam<Damage> {};

TEST_P(DamagedInventory, IsRefusedWithItsPlace) {
  InventoryBuilder machine = SmallMachine();
  GetParam().make(machine);
  EXPECT_EQ(UserErrorOf([&] { machine.Read(); }),
            "built holds no inventory: " + GetParam().message + kAdvice);
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedInventory, testing::ValuesIn(kDamages),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FromJson, MayLackWhatADeviceDoesNotSend) {
  InventoryBuilder machine = SmallMachine();
  for (const char* name : {"Description", "HubName", "Manufacturer", "PortNumber", "SerialNumber"}) {
    SavedDevice(machine).erase(name);
  }
  machine.Last("KALDO_USBPort").erase("Speed");
  machine.Last("KALDO_USBController").erase("Description");
  EXPECT_EQ(machine.Read().Devices().size(), 1U);
}

TEST(FromJson, ReportsThePlaceOfWhatIsNotJson) {
  const std::string text = SmallMachine().Text();
  EXPECT_EQ(UserErrorOf([&] { cli::FromJson(text.substr(0, text.size() - 1), "file"); }),
            "file holds no inventory: line 1, column " + std::to_string(text.size()) +
                ": the document ends too early" + kAdvice);
  EXPECT_EQ(UserErrorOf([] { cli::FromJson("{\"schema\": 1, \"schema\": 2}", "file"); }),
            std::string("file holds no inventory: /schema: occurs twice") + kAdvice);
}

TEST(FromJson, IsRefusedWhereverItIsCutOff) {
  const std::string text = SmallMachine().Text();
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_NE(UserErrorOf([&] { cli::FromJson(text.substr(0, size), "file"); }), "") << size;
  }
}

}  // namespace
}  // namespace usbinfo_test
