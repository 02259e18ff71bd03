// --devices: only the list from the file or pipe is read, and a list without devices is reported.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/cli/support/XmlDocument.h"

using nlohmann::json;

namespace usbinfo_test {
namespace {

constexpr const char* kNoListIn = "usbinfo: no USB device found: ";
constexpr const char* kExpectedIs =
    " lists none; a device list is what /sys/kernel/debug/usb/devices or usb-devices prints\n";

std::string NoListIn(const std::string& source) {
  return kNoListIn + source + kExpectedIs;
}

TEST(DevicesOption, ReadsAListFromAPipe) {
  const std::string name = "vm-desktop-debugfs";
  const CommandResult result = Command({"--devices", "-", "--system-name", "testhost", "--format", "json"})
                                   .Input(ReadFile(CapturePath(name)))
                                   .Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, Expected(name + ".json"));
  EXPECT_EQ(result.errors, "");
}

TEST(DevicesOption, ReadsAListThatComesInMoreThanOnePiece) {
  const std::string list =
      "X:" + std::string(300000, 'x') + "\n" + ReadFile(CapturePath("proc-manufacturer-keyword"));
  const CommandResult result = Command({"--devices", "-", "--format", "json"}).Input(list).Run();
  const json devices = json::parse(result.output)["classes"]["KALDO_USBDevice"];
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices[0]["Description"], "NETGEAR WG111v3");
}

TEST(DevicesOption, GoesWithTheSubcommandOnEitherSide) {
  const std::string capture = CapturePath("vm-desktop-debugfs");
  const CommandResult plain = RunUsbinfo({"--devices", capture});
  EXPECT_EQ(plain.status, 0);
  EXPECT_EQ(RunUsbinfo({"show", "--devices", capture}).output, plain.output);
  EXPECT_EQ(RunUsbinfo({"--devices", capture, "show"}).output, plain.output);
  EXPECT_EQ(RunUsbinfo({"--devices=" + capture}).output, plain.output);
}

TEST(DevicesOption, SaysThatAnEmptyListHoldsNothing) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", "");
  const CommandResult result = RunUsbinfo({"--devices", list});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, NoListIn(list));
}

TEST(DevicesOption, SaysThatAListWithoutDevicesListsNone) {
  const TemporaryFolder folder;
  const std::string indented = folder.File("list", " T:  Bus=01 Lev=00 Prnt=00\n");
  EXPECT_EQ(RunUsbinfo({"--devices", indented}).errors, NoListIn(indented));
  const std::string saved = folder.File("saved", Command({"--devices", "-", "-j"}).Input("").Run().output);
  EXPECT_EQ(RunUsbinfo({"--devices", saved}).errors, NoListIn(saved));
}

TEST(DevicesOption, SaysThatAnEmptyPipeHoldsNothing) {
  const CommandResult result = Command({"--devices", "-"}).Input("").Run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, NoListIn("standard input"));
}

TEST(DevicesOption, RefusesATextThatIsNoList) {
  const TemporaryFolder folder;
  for (const std::string& text : {std::string("D:  Ver= 2.00\nS:  Product=x\nE:  Ad=81(I)\n\n"),
                                  std::string("\x7F"
                                              "ELF\0\0T:\n",
                                              10),
                                  std::string("\0", 1)}) {
    const std::string list = folder.File("list", text);
    const CommandResult result = RunUsbinfo({"--devices", list, "-j"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "usbinfo: " + list +
                                 " holds no device list: no line begins with \"T:\"; a device list is what "
                                 "/sys/kernel/debug/usb/devices or usb-devices prints\n");
  }
}

TEST(DevicesOption, RefusesJsonThatIsNoInventory) {
  const TemporaryFolder folder;
  const std::string path = folder.File("list", "{\"schema\": 1}");
  const CommandResult result = RunUsbinfo({"--devices", path, "-j"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "usbinfo: " + path +
                               " holds no inventory: /schema: must be \"usbinfo.inventory/2\"; save it anew "
                               "with usbinfo --format json\n");
}

TEST(DevicesOption, TakesBlanksForAMachineWithoutDevices) {
  const TemporaryFolder folder;
  EXPECT_EQ(RunUsbinfo({"--devices", folder.File("list", " \t\r\n\n ")}).status, 1);
}

TEST(DevicesOption, StillPrintsTheEmptyDocumentsForPrograms) {
  const CommandResult asJson =
      Command({"--devices", "-", "--system-name", "s", "--format", "json"}).Input("").Run();
  EXPECT_EQ(asJson.status, 1);
  EXPECT_EQ(asJson.errors, NoListIn("standard input"));
  const json document = json::parse(asJson.output);
  EXPECT_EQ(document["system"]["name"], "s");
  EXPECT_EQ(document["classes"].size(), 6U);
  for (const json& instances : document["classes"]) EXPECT_EQ(instances, json::array());
  const CommandResult asXml = Command({"--devices", "-", "--format", "cimxml"}).Input("").Run();
  EXPECT_EQ(asXml.status, 1);
  EXPECT_EQ(asXml.errors, NoListIn("standard input"));
  const XmlDocument xml(asXml.output);
  EXPECT_TRUE(xml.IsValidCim());
  EXPECT_EQ(xml.Count("//VALUE.NAMEDOBJECT"), 0U);
}

TEST(DevicesOption, LogsThatAnEmptyListIsEmpty) {
  const CommandResult result = Command({"--devices", "-", "--log-level", "status"}).Input("").Run();
  EXPECT_EQ(result.errors, "status: USB device file is empty\n" + NoListIn("standard input"));
}

TEST(SystemNameOption, GoesIntoTheKeys) {
  const CommandResult result = RunUsbinfo({"--devices", CapturePath("proc-manufacturer-keyword"),
                                           "--system-name", "my host", "--format", "json"});
  const json document = json::parse(result.output);
  EXPECT_EQ(document["system"]["name"], "my host");
  EXPECT_EQ(document["classes"]["KALDO_USBDevice"][0]["SystemName"], "my host");
}

}  // namespace
}  // namespace usbinfo_test
