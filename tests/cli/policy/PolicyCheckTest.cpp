// Whole inventories against policies: the policy that the format usbguard prints allows every device, and
// none that changes; what is not known of a device; the results as text and as JSON.
#include <gmock/gmock.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/UsbguardFormat.h"
#include "cli/model/FromJson.h"
#include "cli/policy/PolicyCheck.h"
#include "cli/policy/PolicyCheckJson.h"
#include "cli/policy/PolicyCheckText.h"
#include "cli/policy/PolicyParser.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kDesktopKeyboard = "Bus 01  Device   4";

std::string Desktop() {
  return ReadFile(SOURCE_DIR "/examples/desktop.json");
}

/// The documents that a test takes: each captured list's, and one from sysfs.
std::vector<std::string> Documents() {
  std::vector<std::string> documents = {Desktop()};
  for (const std::string& name : CaptureNames()) documents.push_back(Expected(name + ".json"));
  return documents;
}

cli::Inventory Parsed(const json& document) {
  return cli::FromJson(document.dump(), "saved");
}

std::string PolicyFor(const json& document) {
  return cli::RenderUsbguard(Parsed(document), cli::RenderOptions{});
}

/// The identifiers of the devices of `document` that `policy` does not allow.
std::vector<std::string> RefusedBy(const std::string& policy, const json& document) {
  const cli::Policy rules = cli::ParsePolicy(policy, "rules.conf");
  const cli::Inventory inventory = Parsed(document);
  std::vector<std::string> refused;
  for (const cli::CheckedDevice& device : cli::Check(rules, inventory, "saved").devices) {
    if (!device.IsAllowed()) refused.push_back(device.device.item->String(cli::PropertyId::kDeviceID));
  }
  return refused;
}

json& InstanceOf(json& document, const std::string& identifier) {
  for (const char* const name : {"KALDO_USBHub", "KALDO_USBDevice"}) {
    for (json& instance : document["classes"][name]) {
      if (instance["DeviceID"] == identifier) return instance;
    }
  }
  throw std::runtime_error("no instance of " + identifier);
}

json Keyboard() {
  return json::parse(R"({"configuration": 1, "number": 9, "setting": 0, "active": true, "class": "03",
                         "subclass": "01", "protocol": "01", "driver": null})");
}

/// Changes the instance of a device and what the kernel knows of it. Gives false where that changes nothing
/// that a rule is about.
using Change = std::function<bool(json& instance, json& facts)>;

const std::vector<Change>& Changes() {
  const auto setText = [](const char* name) {
    return [name](json& /*instance*/, json& facts) {
      facts[name] = "Another";
      return true;
    };
  };
  const auto setOther = [](const char* name) {
    return [name](json& instance, json& /*facts*/) {
      // Not the number of another device.
      instance[name] = instance[name].get<int>() ^ 0x5A5A;
      return true;
    };
  };
  static const std::vector<Change> changes = {
      setOther("VendorID"),
      setOther("USBDeviceID"),
      setText("product"),
      setText("serial"),
      [](json&, json& facts) {
        facts["interfaces"].push_back(Keyboard());
        return true;
      },
      [](json&, json& facts) {
        // The last one of a list's leaves the interfaces not known.
        if (facts["interfaces"].size() < 2) return false;
        facts["interfaces"].erase(facts["interfaces"].size() - 1);
        return true;
      },
      [](json&, json& facts) {
        if (facts["interfaces"].empty()) return false;
        facts["interfaces"][0]["protocol"] = "7f";
        return true;
      },
      [](json&, json& facts) {
        const bool hasSerial = !facts["serial"].is_null() && facts["serial"] != "";
        if (hasSerial || facts["name"].is_null()) return false;
        facts["name"] = "99-9";
        return true;
      },
  };
  return changes;
}

TEST(UsbguardFormat, AllowsEveryDeviceOfItsInventory) {
  for (const std::string& document : Documents()) {
    const json inventory = json::parse(document);
    EXPECT_THAT(RefusedBy(PolicyFor(inventory), inventory), IsEmpty()) << PolicyFor(inventory);
  }
}

TEST(UsbguardFormat, AllowsNoDeviceThatHasChanged) {
  for (const std::string& document : Documents()) {
    const json before = json::parse(document);
    const std::string policy = PolicyFor(before);
    for (std::size_t index = 0; index < before["kernel"]["devices"].size(); ++index) {
      for (const Change& change : Changes()) {
        json after = before;
        json& facts = after["kernel"]["devices"][index];
        const std::string identifier = facts["device"];
        if (!change(InstanceOf(after, identifier), facts)) continue;
        EXPECT_THAT(RefusedBy(policy, after), ElementsAre(identifier)) << facts.dump() << "\n" << policy;
      }
    }
  }
}

TEST(UsbguardFormat, PrintsARulePerDeviceByPlace) {
  const std::vector<std::string> rules = Lines(PolicyFor(json::parse(Desktop())));
  ASSERT_EQ(rules.size(), 11U);
  EXPECT_EQ(
      rules[0],
      "allow id 1d6b:0002 serial \"0000:00:01.0\" name \"xHCI Host Controller\" with-interface 09:00:00 "
      "with-connect-type \"\"");
  EXPECT_EQ(rules[2],
            "allow id 0627:0001 serial \"KBD-0001\" name \"QEMU USB Keyboard\" with-interface 03:01:01 "
            "with-connect-type \"unknown\"");
  EXPECT_EQ(
      rules[4],
      "allow id 46f4:0002 serial \"1-0000:00:01.0-4\" name \"QEMU USB Audio\" with-interface { 01:01:04 "
      "01:02:00 01:02:00 } with-connect-type \"unknown\"");
}

TEST(UsbguardFormat, TiesDevicesWithoutASerialNumberToTheirPorts) {
  json document = json::parse(Desktop());
  document["kernel"]["devices"][2]["serial"] = nullptr;
  EXPECT_THAT(PolicyFor(document),
              HasSubstr(" serial \"\" name \"QEMU USB Keyboard\" via-port \"1-3.1\" with-"));
}

TEST(UsbguardFormat, AllowsDevicesWhosePortsAreNotKnownFirst) {
  json document = json::parse(Desktop());
  for (const std::size_t mouse : {2U, 3U}) {
    json& facts = document["kernel"]["devices"][mouse];
    facts.update({{"product", "Mouse"}, {"serial", nullptr}, {"interfaces", json::array({Keyboard()})}});
  }
  document["kernel"]["devices"][3]["name"] = nullptr;
  document["origin"]["source"] = "list";
  const std::string policy = PolicyFor(document);
  EXPECT_THAT(policy, StartsWith("allow id 0627:0001 serial \"\" name \"Mouse\" with-interface 03:01:01\n"));
  EXPECT_THAT(RefusedBy(policy, document), IsEmpty());
}

TEST(UsbguardFormat, EscapesWhatTheLanguageHasNoOtherFormFor) {
  json document = json::parse(Desktop());
  document["kernel"]["devices"][2]["product"] = "a\"b\\c\n\x7F\xC3\xA4 # {";
  const std::string policy = PolicyFor(document);
  EXPECT_THAT(policy, HasSubstr(R"( name "a\"b\\c\x0a\x7f\xc3\xa4 # {" )"));
  EXPECT_THAT(RefusedBy(policy, document), IsEmpty());
}

TEST(UsbguardFormat, AllowsADeviceWithoutInterfacesOnlySo) {
  json document = json::parse(Desktop());
  document["kernel"]["devices"][2]["interfaces"] = json::array();
  const std::string policy = PolicyFor(document);
  EXPECT_THAT(policy, HasSubstr(" with-interface match-all { 00:00:00 } "));
  EXPECT_THAT(RefusedBy(policy, document), IsEmpty());
  EXPECT_THAT(RefusedBy(policy, json::parse(Desktop())), ElementsAre(kDesktopKeyboard));
}

TEST(UsbguardFormat, RefusesWhatItsRulesWouldNotMatch) {
  json masked = json::parse(Desktop());
  masked["origin"]["masked"] = {{"key", nullptr}};
  EXPECT_THAT(UserErrorOf([&] { PolicyFor(masked); }), StartsWith("the serial numbers are masked, "));
  json suspect = json::parse(Desktop());
  suspect["origin"]["findings"] = OriginExample()["findings"];
  EXPECT_THAT(
      UserErrorOf([&] { PolicyFor(suspect); }),
      MatchesRegex("the kernel does not write lines 17, 19 .*; a device may have forged this, and the "
                   "rules would allow it; use an inventory from sysfs, or another format"));
  json old = json::parse(Desktop());
  old["kernel"] = nullptr;
  EXPECT_THAT(UserErrorOf([&] { PolicyFor(old); }),
              StartsWith("the inventory does not hold all interfaces of "));
}

TEST(PolicyDevices, KnowWhatTheirInventoryHolds) {
  json document = json::parse(Desktop());
  const auto error = [&](const std::string& attribute) {
    return UserErrorOf([&] { RefusedBy("allow " + attribute, document); });
  };
  EXPECT_THAT(error("hash \"x\""),
              StartsWith("rules.conf:1: the rule needs hash of usb1, which is not known: "));
  EXPECT_THAT(error("parent-hash \"x\""), StartsWith("rules.conf:1: the rule needs parent-hash of usb1, "));
  for (const std::string known : {"serial \"x\"", "via-port \"x\"", "with-connect-type \"x\"",
                                  "with-interface 03:*:*", "name \"x\"", "*:*"}) {
    EXPECT_EQ(error(known), "") << known;
  }
  document["origin"]["masked"] = {{"key", nullptr}};
  EXPECT_THAT(error("serial \"x\""), StartsWith("rules.conf:1: the rule needs serial of 1-3, "));
  document["origin"]["source"] = "list";
  EXPECT_THAT(error("with-connect-type \"x\""),
              StartsWith("rules.conf:1: the rule needs with-connect-type of usb1, "));
  document["kernel"] = nullptr;
  EXPECT_THAT(error("via-port \"x\""),
              StartsWith("rules.conf:1: the rule needs via-port of \"Bus 01  Device   1\", "));
  EXPECT_THAT(error("with-interface 03:*:*"), StartsWith("rules.conf:1: the rule needs with-interface of "));
  EXPECT_EQ(error("name \"x\""), "");
}

TEST(PolicyDevices, LackWhatADeviceListLeavesOut) {
  const auto errorOf = [](json document, const std::string& attribute) {
    return UserErrorOf([&] { RefusedBy("allow id 0627:*\nblock " + attribute, document); });
  };
  const std::string needsInterface = "rules.conf:2: the rule needs with-interface of ";
  json document = json::parse(Desktop());
  document["kernel"]["devices"][1]["lacksConfigurations"] = true;
  EXPECT_THAT(errorOf(document, "with-interface one-of { 07:*:* }"), StartsWith(needsInterface + "1-3,"));
  document = json::parse(Desktop());
  json& hub = InstanceOf(document, document["kernel"]["devices"][1]["device"]);
  hub.update({{"VendorID", 0}, {"USBDeviceID", 0}});
  EXPECT_THAT(errorOf(document, "id 1234:*"), StartsWith("rules.conf:1: the rule needs id of 1-3, "));
  EXPECT_THAT(UserErrorOf([&] { PolicyFor(document); }),
              StartsWith("the inventory does not hold the numbers of vendor and product of 1-3, "));
}

TEST(PolicyDevices, HaveNoConnectTypeWhereSysfsSaysNone) {
  json document = json::parse(Desktop());
  for (json& port : document["kernel"]["ports"]) port["connect"] = nullptr;
  EXPECT_THAT(RefusedBy("allow with-connect-type \"\"", document), IsEmpty());
}

TEST(Check, RefusesAPartOfAnInventory) {
  json document = json::parse(Desktop());
  document["origin"]["selection"] = {
      {"classes", json::array()}, {"ids", {"1d6b:"}}, {"places", json::array()}};
  EXPECT_EQ(UserErrorOf([&] { RefusedBy("allow", document); }),
            "saved holds only a part of the inventory; save it without the options -d, -s, --class "
            "and --request");
}

/// The check of the desktop by a policy.
struct DesktopCheck {
  explicit DesktopCheck(const std::string& text) : policy(cli::ParsePolicy(text, "rules.conf")) {
    checked.push_back(cli::Check(policy, inventory, "desktop.json"));
  }

  std::string Text() const { return cli::RenderCheckText(policy, checked); }

  cli::Policy policy;
  cli::Inventory inventory = Parsed(json::parse(Desktop()));
  std::vector<cli::CheckedInventory> checked;
};

constexpr const char* kPolicy = R"(# no input devices but tablets
allow id 056a:*
reject name "QEMU USB Mouse" # x
block with-interface one-of { 03:*:* }
allow with-interface 09:*:*
allow with-interface equals { 08:*:* }
)";

TEST(CheckText, ShowsWhatIsNotAllowedAndWhy) {
  EXPECT_EQ(
      DesktopCheck(kPolicy).Text(),
      R"(1-3.1: keyboard 0627:0001 "QEMU USB Keyboard", serial "KBD-0001": blocked by rules.conf:4: block with-interface one-of { 03:*:* }
1-3.2: mouse 0627:0001 "QEMU USB Mouse", serial "MOUSE-02": rejected by rules.conf:3: reject name "QEMU USB Mouse" # x
1-4: audio 46f4:0002 "QEMU USB Audio", serial "1-0000:00:01.0-4": blocked, no rule matches
3 of 11 devices not allowed
)");
}

TEST(CheckText, IsEmptyWhereAllIsAllowed) {
  EXPECT_EQ(DesktopCheck("allow").Text(), "");
}

TEST(CheckText, NamesEachOfSeveralInventories) {
  DesktopCheck check("block 0627:0001 name \"QEMU USB Mouse\"\nallow");
  check.checked.push_back(check.checked.front());
  check.checked.back().name = "b\n.json";
  const std::vector<std::string> lines = Lines(check.Text());
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith("desktop.json: 1-3.2: mouse "));
  EXPECT_THAT(lines[1], StartsWith("b\\n.json: 1-3.2: mouse "));
  EXPECT_EQ(lines[2], "2 of 22 devices not allowed");
}

TEST(CheckJson, HoldsEveryDeviceWithItsDecision) {
  const DesktopCheck check(kPolicy);
  const json document = json::parse(cli::RenderCheckJson(check.policy, check.checked));
  EXPECT_EQ(document["schema"], "usbinfo.check/1");
  EXPECT_EQ(document["policy"], "rules.conf");
  EXPECT_EQ(document["default"], "block");
  const json& inventory = document["inventories"].at(0);
  EXPECT_EQ(inventory["system"], check.inventory.SystemName());
  EXPECT_EQ(inventory["source"], "sysfs");
  EXPECT_EQ(inventory["suspect"], false);
  EXPECT_EQ(inventory["deviceCount"], 11);
  EXPECT_EQ(inventory["notAllowedCount"], 3);
  ASSERT_EQ(inventory["devices"].size(), 11U);
  EXPECT_EQ(inventory["devices"][2], json::parse(R"({
    "device": "Bus 01  Device   4", "name": "1-3.1", "id": "0627:0001", "product": "QEMU USB Keyboard",
    "serial": "KBD-0001", "kinds": ["keyboard"], "decision": "block",
    "rule": {"line": 4, "text": "block with-interface one-of { 03:*:* }"}})"));
  EXPECT_EQ(inventory["devices"][3]["decision"], "reject");
  EXPECT_EQ(inventory["devices"][4]["rule"], nullptr);
  EXPECT_EQ(inventory["devices"][5]["decision"], "allow");
}

}  // namespace
}  // namespace usbinfo_test
