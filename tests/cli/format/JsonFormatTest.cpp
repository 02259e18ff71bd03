// The JSON document: its exact form, the type of each value, the order of everything, and bytes that JSON
// cannot hold.
#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/format/JsonFormat.h"
#include "cli/format/RenderOptions.h"
#include "tests/cli/support/CliTest.h"

using cli::Inventory;
using NKESTA20::TCIMValue;
using nlohmann::ordered_json;
using namespace std::string_literals;

namespace usbinfo_test {
namespace {

class JsonFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderJson(Collected(), {}); }
  ordered_json Parse() const { return ordered_json::parse(Render()); }
};

TEST_F(JsonFormatTest, PrintsADocumentForAnEmptyInventory) {
  EXPECT_EQ(Render(), R"({
  "schema": "usbinfo.inventory/2",
  "system": {
    "name": "testhost",
    "creationClassName": "KALDO_ComputerSystem"
  },
  "origin": null,
  "classes": {
    "KALDO_USBController": [],
    "KALDO_USBHub": [],
    "KALDO_USBPort": [],
    "KALDO_USBDevice": [],
    "KALDO_USBPortOnHub": [],
    "KALDO_USBConnection": []
  },
  "kernel": null
}
)");
}

TEST_F(JsonFormatTest, PrintsTheSameDocumentOnOneLine) {
  AddPort("a Port 00", 480000000, "No device\nconnected");
  const std::string line = cli::RenderJson(Collected(), {.isCompact = true});
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_EQ(ordered_json::parse(line), Parse());
}

TEST_F(JsonFormatTest, PrintsPropertiesByNameWithTheirTypes) {
  AddPort("a Port 00", 480000000, "No device connected");
  EXPECT_EQ(
      Parse()["classes"]["KALDO_USBPort"].dump(),
      R"([{"CreationClassName":"KALDO_USBPort","DeviceID":"a Port 00","Speed":480000000,)"
      R"("StatusDescriptions":["No device connected"],"SystemCreationClassName":"KALDO_ComputerSystem",)"
      R"("SystemName":"testhost"}])");
}

TEST_F(JsonFormatTest, PrintsNumbersOfEverySizeInFull) {
  AddPort("port", std::numeric_limits<unsigned long>::max(), "x");
  AddDevice("device", "", std::numeric_limits<unsigned char>::max());
  CommitEntity("KALDO_USBHub", "hub", {{"VendorID", TCIMValue(static_cast<unsigned short>(65535))}});
  const std::string text = Render();
  EXPECT_NE(text.find("\"Speed\": 18446744073709551615,"), std::string::npos);
  EXPECT_NE(text.find("\"Speed\": 255,"), std::string::npos);
  EXPECT_NE(text.find("\"VendorID\": 65535\n"), std::string::npos);
}

TEST_F(JsonFormatTest, PrintsReferencesAsObjectPaths) {
  Path port = AddPort("p\"1", 1, "x");
  Path device = AddDevice("d\\1", "", 1);
  Associate("KALDO_USBConnection", port, device);
  const ordered_json connection = Parse()["classes"]["KALDO_USBConnection"][0];
  const std::string rest = R"(,SystemCreationClassName="KALDO_ComputerSystem",SystemName="testhost")";
  EXPECT_EQ(connection.dump(),
            ordered_json({{"Antecedent", R"(KALDO_USBPort.CreationClassName="KALDO_USBPort",)"
                                         R"(DeviceID="p\"1")" +
                                             rest},
                          {"Dependent", R"(KALDO_USBDevice.CreationClassName="KALDO_USBDevice",)"
                                        R"(DeviceID="d\\1")" +
                                            rest}})
                .dump());
}

TEST_F(JsonFormatTest, KeepsTheOrderInWhichInstancesWereCommitted) {
  for (const char* id : {"b", "c", "a"}) AddHub(id, "", 1);
  const ordered_json hubs = Parse()["classes"]["KALDO_USBHub"];
  ASSERT_EQ(hubs.size(), 3U);
  EXPECT_EQ(hubs[0]["DeviceID"], "b");
  EXPECT_EQ(hubs[1]["DeviceID"], "c");
  EXPECT_EQ(hubs[2]["DeviceID"], "a");
}

TEST_F(JsonFormatTest, LeavesOutWhatAnInstanceLacks) {
  CommitEntity("KALDO_USBDevice", "bare");
  EXPECT_EQ(Parse()["classes"]["KALDO_USBDevice"][0].size(), 4U);
  EXPECT_EQ(Parse()["classes"].dump().find("null"), std::string::npos);
}

TEST_F(JsonFormatTest, ReplacesBytesThatAreNoUtf8) {
  AddDevice("a\xFFz", "\xE2\x82|\xED\xA0\x80", 1);
  const ordered_json device = Parse()["classes"]["KALDO_USBDevice"][0];
  EXPECT_EQ(device["DeviceID"], "a\xEF\xBF\xBDz");
  EXPECT_EQ(device["Description"], "\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST_F(JsonFormatTest, KeepsEveryOtherCharacterAndPrintsAsciiOnly) {
  const std::string odd = "\"\\/\0\x01\n\r\t\x1B\x7F\xC2\x9B\xC3\xA9\xE2\x80\xAE\xF0\x9F\x98\x80"s;
  AddDevice("device", odd, 1);
  const std::string text = Render();
  for (const char byte : text) EXPECT_TRUE(byte == '\n' || (byte >= 0x20 && byte < 0x7F)) << int{byte};
  EXPECT_EQ(ordered_json::parse(text)["classes"]["KALDO_USBDevice"][0]["Description"], odd);
}

TEST_F(JsonFormatTest, NamesTheSystemAsTheHostDoes) {
  host.SetSystemName("caf\xC3\xA9\n\xFF");
  EXPECT_EQ(Parse()["system"]["name"], "caf\xC3\xA9\n\xEF\xBF\xBD");
}

}  // namespace
}  // namespace usbinfo_test
