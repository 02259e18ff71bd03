// The difference as text and as JSON: what a line holds, and that no string of a device can forge one.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/text/Text.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/InventoryBuilder.h"

using cli::Inventory;
using nlohmann::json;
using testing::ElementsAre;
using testing::Not;

namespace usbinfo_test {
namespace {

/// Two machines between which one item each was added, removed, moved and changed, with `text` in all their
/// strings.
struct Pair {
  explicit Pair(const std::string& text) {
    const std::string valid = AsUtf8(text);
    InventoryBuilder before("old " + valid);
    InventoryBuilder after("new " + valid);
    for (InventoryBuilder* machine : {&before, &after}) machine->AddBus(1, 9);
    const std::string root = "Bus 01  Device   1";
    before.AddDevice(root, 0, 2, {"gone " + valid, "1" + valid});
    after.AddDevice(root, 1, 2, {"come " + valid, "2" + valid});
    before.AddDevice(root, 2, 3, {"moved " + valid, "3" + valid});
    after.AddDevice(root, 3, 3, {"moved " + valid, "3" + valid});
    before.AddDevice(root, 4, 4, {"before " + valid});
    after.AddDevice(root, 4, 4, {"after " + valid});
    before.Find("KALDO_USBPort", root + " Port 08")["StatusDescriptions"] = {valid, "a"};
    old = before.Read();
    now = after.Read();
  }
  std::string Text(bool isColored) const { return cli::RenderDiffText(cli::Compare(old, now), isColored); }
  json Json() const { return json::parse(cli::RenderDiffJson(cli::Compare(old, now))); }

  Inventory old{""};
  Inventory now{""};
};

TEST(DiffText, ListsOneItemALineAndItsPropertiesBelow) {
  EXPECT_THAT(Lines(Pair("x").Text(false)),
              ElementsAre("\"old x\" (time not known) -> \"new x\" (time not known)",
                          "- bus 1, port 0: device 1234:5678 \"gone x\", serial \"1x\"",
                          "+ bus 1, port 1: device 1234:5678 \"come x\", serial \"2x\"",
                          "> bus 1, port 2 -> bus 1, port 3: device 1234:5678 \"moved x\", serial \"3x\"",
                          "~ bus 1, port 4: device 1234:5678 \"before x\" -> 1234:5678 \"after x\"",
                          "    Description: \"before x\" -> \"after x\"", "~ bus 1, port 8: port",
                          "    StatusDescriptions: \"x\", \"a\" -> \"No device connected\"",
                          "1 added, 1 removed, 1 moved, 2 changed"));
}

TEST(DiffText, ColoursTheLinesByWhatHappened) {
  EXPECT_THAT(
      Lines(Pair("x").Text(true)),
      testing::IsSupersetOf(
          {"\x1B[31m- bus 1, port 0: device 1234:5678 \"gone x\", serial \"1x\"\x1B[0m",
           "\x1B[32m+ bus 1, port 1: device 1234:5678 \"come x\", serial \"2x\"\x1B[0m",
           "\x1B[36m> bus 1, port 2 -> bus 1, port 3: device 1234:5678 \"moved x\", serial \"3x\"\x1B[0m",
           "\x1B[33m~ bus 1, port 8: port\x1B[0m"}));
}

TEST(DiffText, ShowsSpeedsAsNumbersWhereWordsWouldBeTheSame) {
  InventoryBuilder before;
  before.AddBus(1, 1);
  InventoryBuilder after = before;
  before.Last("KALDO_USBPort")["Speed"] = 12000000;
  after.Last("KALDO_USBPort")["Speed"] = 12000001;
  const Inventory old = before.Read();
  const Inventory now = after.Read();
  EXPECT_THAT(Lines(cli::RenderDiffText(cli::Compare(old, now), false)),
              ElementsAre("\"testhost\" (time not known) -> \"testhost\" (time not known)",
                          "~ bus 1, port 0: port", "    Speed: 12000000 -> 12000001", "1 changed"));
}

/// The text without the parts in quotes, that is, without texts of devices.
std::string WithoutQuoted(const std::string& text) {
  std::string outside;
  bool isQuoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isQuoted && text[at] == '\\') {
      ++at;
    } else if (text[at] == '"') {
      isQuoted = !isQuoted;
    } else if (!isQuoted) {
      outside += text[at];
    }
  }
  return outside;
}

TEST(HostileDiffs, ForgeNothingInTheText) {
  const std::string harmless = WithoutQuoted(Pair("harmless").Text(false));
  for (const HostileString& hostile : HostileStrings()) {
    EXPECT_EQ(WithoutQuoted(Pair(hostile.bytes).Text(false)), harmless) << hostile.name;
  }
}

TEST(HostileDiffs, SendNothingToATerminal) {
  for (const HostileString& hostile : HostileStrings()) {
    std::string text = Pair(hostile.bytes).Text(false);
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    // In an escaped text only the backslashes need escaping again.
    std::string doubled;
    for (const char c : text) doubled += c == '\\' ? std::string("\\\\") : std::string(1, c);
    EXPECT_EQ(cli::EscapeForTerminal(text), doubled) << hostile.name;
    EXPECT_THAT(text, Not(testing::HasSubstr("\t"))) << hostile.name;
    const Pair pair(hostile.bytes);
    EXPECT_THAT(cli::RenderDiffJson(cli::Compare(pair.old, pair.now)),
                testing::Each(testing::AnyOf('\n', testing::AllOf(testing::Ge(' '), testing::Le('~')))))
        << hostile.name;
  }
}

TEST(HostileDiffs, AreReadBackFromJson) {
  for (const HostileString& hostile : HostileStrings()) {
    const json document = Pair(hostile.bytes).Json();
    EXPECT_EQ(document["old"]["system"], "old " + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["removed"][0]["properties"]["Description"], "gone " + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["added"][0]["properties"]["SerialNumber"], "2" + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["moved"][0]["new"]["properties"]["SerialNumber"], "3" + hostile.asUtf8)
        << hostile.name;
    EXPECT_EQ(document["changed"][0]["properties"][0]["from"], "before " + hostile.asUtf8) << hostile.name;
  }
}

std::vector<std::string> KeysOf(const nlohmann::ordered_json& object) {
  std::vector<std::string> names;
  for (const auto& entry : object.items()) names.push_back(entry.key());
  return names;
}

TEST(DiffJson, HoldsAllDifferencesInAFixedOrder) {
  Pair pair("x");
  const auto document = nlohmann::ordered_json::parse(cli::RenderDiffJson(cli::Compare(pair.old, pair.now)));
  EXPECT_THAT(KeysOf(document), ElementsAre("schema", "old", "new", "added", "removed", "moved", "changed"));
  EXPECT_EQ(document["schema"], "usbinfo.diff/2");
  EXPECT_EQ(document["old"].dump(), R"({"system":"old x","source":null,"collected":null,"machine":null})");
  EXPECT_THAT(KeysOf(document["moved"][0]), ElementsAre("certain", "old", "new", "properties"));
  EXPECT_EQ(document["moved"][0]["certain"], true);
  EXPECT_EQ(document["moved"][0]["old"]["place"], "bus 1, port 2");
  EXPECT_EQ(document["moved"][0]["new"]["place"], "bus 1, port 3");
  EXPECT_EQ(document["moved"][0]["properties"].dump(), "[]");
  EXPECT_EQ(document["changed"][0]["properties"].dump(),
            R"([{"name":"Description","from":"before x","to":"after x"}])");
}

TEST(DiffJson, HoldsAnItemWhole) {
  InventoryBuilder before;
  InventoryBuilder after;
  after.AddDevice(after.AddBus(1, 2), 0, 2, {"Stick", "S1"});
  after.Document()["origin"] = OriginExample();
  after.Document()["kernel"] = KernelExample();
  const Inventory old = before.Read();
  const Inventory now = after.Read();
  const json document = json::parse(cli::RenderDiffJson(cli::Compare(old, now)));
  EXPECT_EQ(document["new"], (json{{"system", "testhost"},
                                   {"source", "sysfs"},
                                   {"collected", "2026-11-21T12:00:00Z"},
                                   {"machine", "c0ffee"}}));
  ASSERT_EQ(document["added"].size(), 3U);
  const json classes = after.Document()["classes"];
  EXPECT_EQ(document["added"][0]["properties"], classes["KALDO_USBController"][0]);
  EXPECT_EQ(document["added"][0]["kernel"], nullptr);
  EXPECT_EQ(document["added"][1]["properties"], classes["KALDO_USBHub"][0]);
  const json& device = document["added"][2];
  EXPECT_EQ(device["class"], "KALDO_USBDevice");
  EXPECT_EQ(device["path"], now.Devices().front().Path());
  EXPECT_EQ(device["place"], "1-1");
  EXPECT_EQ(device["properties"], classes["KALDO_USBDevice"][0]);
  EXPECT_EQ(device["kernel"], KernelExample()["devices"][0]);
}

TEST(DiffJson, IsADocumentOfEmptyListsWhereNothingDiffers) {
  const Inventory machine = InventoryBuilder("one").Read();
  const Inventory other = InventoryBuilder("two").Read();
  EXPECT_EQ(json::parse(cli::RenderDiffJson(cli::Compare(machine, other))).dump(),
            R"({"added":[],"changed":[],"moved":[],)"
            R"("new":{"collected":null,"machine":null,"source":null,"system":"two"},)"
            R"("old":{"collected":null,"machine":null,"source":null,"system":"one"},)"
            R"("removed":[],"schema":"usbinfo.diff/2"})");
  EXPECT_EQ(cli::RenderDiffText(cli::Compare(machine, other), false), "");
}

}  // namespace
}  // namespace usbinfo_test
