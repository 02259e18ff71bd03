// The JSON Lines: the exact form of a line, their order, and that nothing in a text breaks one.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli/format/JsonLinesFormat.h"
#include "cli/format/RenderOptions.h"
#include "tests/cli/support/CliTest.h"

using cli::Inventory;
using nlohmann::ordered_json;

namespace usbinfo_test {
namespace {

class JsonLinesFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderJsonLines(Collected(), {}); }
};

TEST_F(JsonLinesFormatTest, IsEmptyForAnEmptyInventory) {
  EXPECT_EQ(Render(), "");
}

TEST_F(JsonLinesFormatTest, PrintsHostClassPathAndPropertiesOfAnInstanceOnALine) {
  AddPort("a Port 00", 480000000, "No device connected");
  EXPECT_EQ(
      Render(),
      R"({"host":"testhost","class":"KALDO_USBPort",)"
      R"("path":"KALDO_USBPort.CreationClassName=\"KALDO_USBPort\",DeviceID=\"a Port 00\",)"
      R"(SystemCreationClassName=\"KALDO_ComputerSystem\",SystemName=\"testhost\"",)"
      R"("properties":{"CreationClassName":"KALDO_USBPort","DeviceID":"a Port 00","Speed":480000000,)"
      R"("StatusDescriptions":["No device connected"],"SystemCreationClassName":"KALDO_ComputerSystem",)"
      R"("SystemName":"testhost"}})"
      "\n");
}

TEST_F(JsonLinesFormatTest, KeepsTheOrderOfTheDocument) {
  AddDevice("device", "", 1);
  for (const char* id : {"b", "a"}) AddHub(id, "", 1);
  std::string order;
  for (const std::string& line : Lines(Render())) {
    order += ordered_json::parse(line)["properties"]["DeviceID"].get<std::string>() + " ";
  }
  EXPECT_EQ(order, "b a device ");
}

TEST_F(JsonLinesFormatTest, KeepsALineALineWhateverATextHolds) {
  AddDevice("a\nb\xE2\x80\xA8\xFF\x1B", "\"}\n{\"class\":\"KALDO_USBHub\"}", 1);
  const std::vector<std::string> lines = Lines(Render());
  ASSERT_EQ(lines.size(), 1U);
  for (const char byte : lines[0]) EXPECT_TRUE(byte >= 0x20 && byte < 0x7F) << int{byte};
  const ordered_json properties = ordered_json::parse(lines[0])["properties"];
  EXPECT_EQ(properties["DeviceID"], "a\nb\xE2\x80\xA8\xEF\xBF\xBD\x1B");
  EXPECT_EQ(properties["Description"], "\"}\n{\"class\":\"KALDO_USBHub\"}");
}

TEST_F(JsonLinesFormatTest, ReplacesBytesThatAreNoUtf8InTheHostsName) {
  host.SetSystemName("caf\xC3\xA9\xFF");
  AddDevice("device", "", 1);
  EXPECT_EQ(ordered_json::parse(Render())["host"], "caf\xC3\xA9\xEF\xBF\xBD");
}

}  // namespace
}  // namespace usbinfo_test
