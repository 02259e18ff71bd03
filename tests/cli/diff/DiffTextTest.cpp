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
              ElementsAre("system \"old x\" -> \"new x\"",
                          "- bus 1, port 0: device 1234:5678 \"gone x\", serial \"1x\"",
                          "+ bus 1, port 1: device 1234:5678 \"come x\", serial \"2x\"",
                          "> bus 1, port 2 -> bus 1, port 3: device 1234:5678 \"moved x\", serial \"3x\"",
                          "~ bus 1, port 4: device 1234:5678 \"before x\" -> 1234:5678 \"after x\"",
                          "    Description: \"before x\" -> \"after x\"", "~ bus 1, port 8: port",
                          "    StatusDescriptions: \"x\", \"a\" -> \"No device connected\""));
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
              ElementsAre("~ bus 1, port 0: port", "    Speed: 12000000 -> 12000001"));
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
    EXPECT_EQ(document["removed"][0]["name"], "gone " + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["added"][0]["serial"], "2" + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["moved"][0]["new"]["serial"], "3" + hostile.asUtf8) << hostile.name;
    EXPECT_EQ(document["changed"][0]["properties"][0]["from"], "before " + hostile.asUtf8) << hostile.name;
  }
}

TEST(DiffJson, HoldsAllDifferencesInAFixedOrder) {
  Pair pair("x");
  const auto document = nlohmann::ordered_json::parse(cli::RenderDiffJson(cli::Compare(pair.old, pair.now)));
  std::vector<std::string> names;
  for (const auto& entry : document.items()) names.push_back(entry.key());
  EXPECT_THAT(names, ElementsAre("schema", "old", "new", "added", "removed", "moved", "changed"));
  EXPECT_EQ(document["schema"], "usbinfo.diff/1");
  EXPECT_EQ(document["added"].dump(),
            R"([{"class":"KALDO_USBDevice","id":"1234:5678","name":"come x","serial":"2x",)"
            R"("place":{"text":"bus 1, port 1","bus":1,"identifier":null,"ports":[1]},)"
            R"("deviceId":"Bus 01  Device   2","ports":null}])");
  EXPECT_EQ(document["moved"][0]["old"]["place"]["text"], "bus 1, port 2");
  EXPECT_EQ(document["moved"][0]["new"]["place"]["text"], "bus 1, port 3");
  EXPECT_EQ(document["moved"][0]["properties"].dump(), "[]");
  EXPECT_EQ(document["changed"][0]["properties"].dump(),
            R"([{"name":"Description","from":"before x","to":"after x"}])");
}

TEST(DiffJson, ShowsWhatIsAbsentAsNull) {
  InventoryBuilder before;
  InventoryBuilder after;
  after.AddBus(7, 3);
  after.AddDevice("Bus 07  Device   1", 0, 2, {"Not Available"});
  after.Document()["classes"]["KALDO_USBConnection"].clear();
  const Inventory old = before.Read();
  const Inventory now = after.Read();
  const auto added = nlohmann::ordered_json::parse(cli::RenderDiffJson(cli::Compare(old, now)))["added"];
  ASSERT_EQ(added.size(), 3U);
  EXPECT_EQ(added[0].dump(), R"({"class":"KALDO_USBController","id":null,"name":"Controller","serial":null,)"
                             R"("place":{"text":"bus 7","bus":7,"identifier":null,"ports":[]},)"
                             R"("deviceId":"Bus 07  Device   1","ports":null})");
  EXPECT_EQ(added[1]["ports"], 3);
  EXPECT_EQ(added[2].dump(), R"({"class":"KALDO_USBDevice","id":"1234:5678","name":null,"serial":null,)"
                             R"("place":{"text":"\"Bus 07  Device   1 Port 00\"","bus":null,)"
                             R"("identifier":"Bus 07  Device   1 Port 00","ports":[]},)"
                             R"("deviceId":"Bus 07  Device   2","ports":null})");
}

TEST(DiffJson, IsADocumentOfEmptyListsWhereNothingDiffers) {
  const Inventory machine = InventoryBuilder("one").Read();
  const Inventory other = InventoryBuilder("two").Read();
  EXPECT_EQ(json::parse(cli::RenderDiffJson(cli::Compare(machine, other))).dump(),
            R"({"added":[],"changed":[],"moved":[],"new":{"system":"two"},"old":{"system":"one"},)"
            R"("removed":[],"schema":"usbinfo.diff/1"})");
  EXPECT_EQ(cli::RenderDiffText(cli::Compare(machine, other), false), "");
}

}  // namespace
}  // namespace usbinfo_test
