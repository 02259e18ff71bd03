// What is reported between two inventories of one machine that were saved from sysfs, and what is not.
#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/FromJson.h"
#include "tests/cli/support/CliTest.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

constexpr const char* kKeyboardItem = "Bus 01  Device   4";
constexpr const char* kStickItem = "Bus 02  Device   2";

/// An inventory as a document that can be changed, at first that of the examples.
class SavedMachine {
 public:
  SavedMachine() : fDocument(json::parse(ReadFile(SOURCE_DIR "/examples/desktop.json"))) {}

  json& Document() { return fDocument; }
  /// What the kernel knows of a hub or device.
  json& Facts(const std::string& device) { return Find(fDocument["kernel"]["devices"], "device", device); }
  json& PortFacts(const std::string& port) { return Find(fDocument["kernel"]["ports"], "port", port); }
  json& Instance(const std::string& className, const std::string& device) {
    return Find(fDocument["classes"][className], "DeviceID", device);
  }

  /// Plugs a device in elsewhere.
  void Move(const std::string& device, const std::string& to, const std::string& name) {
    json& item = Instance("KALDO_USBDevice", device);
    const std::string from = item["PortNumber"];
    item["PortNumber"] = to;
    Instance("KALDO_USBPort", from)["StatusDescriptions"] = {"No device connected"};
    Instance("KALDO_USBPort", to)["StatusDescriptions"] = {"Device connected"};
    for (json& link : fDocument["classes"]["KALDO_USBConnection"]) {
      std::string path = link["Antecedent"];
      const std::size_t at = path.find('"' + from + '"');
      if (at != std::string::npos) link["Antecedent"] = path.replace(at + 1, from.size(), to);
    }
    Facts(device)["name"] = name;
  }

  void Replace(const std::string& pattern, const std::string& by) {
    fDocument = json::parse(std::regex_replace(fDocument.dump(), std::regex(pattern), by));
  }

  /// Gives each bus another number.
  void Renumber(const std::map<int, int>& buses) {
    for (const auto& [old, now] : buses) {
      const std::string number = std::to_string(old);
      const std::string other = "9" + std::to_string(now);
      Replace("Bus 0" + number + " ", "Bus " + other + " ");
      Replace("\"usb" + number + "\"", "\"usb" + other + "\"");
      Replace("\"" + number + "-([0-9.]+)\"", "\"" + other + "-$1\"");
    }
  }

  cli::Inventory Read() const { return cli::FromJson(fDocument.dump(), "saved"); }

 private:
  static json& Find(json& list, const char* key, const std::string& value) {
    for (json& entry : list) {
      if (entry[key] == value) return entry;
    }
    throw std::invalid_argument(value);
  }

  json fDocument;
};

/// The lines of the text without its first one and its last one.
std::vector<std::string> DifferencesOf(const SavedMachine& before, const SavedMachine& after,
                                       const std::vector<std::string>& ignored = {}) {
  const cli::Inventory old = before.Read();
  const cli::Inventory now = after.Read();
  std::vector<std::string> lines = Lines(cli::RenderDiffText(cli::Compare(old, now, ignored), false));
  if (!lines.empty()) {
    lines.erase(lines.begin());
    lines.pop_back();
  }
  return lines;
}

TEST(SavedMachines, DifferInNothingAfterAnUpdateOfTheKernel) {
  SavedMachine after;
  after.Replace("Linux 6.1.0-56-amd64", "Linux 6.12.9-amd64");
  after.Replace(R"("revision":"6.01")", R"("revision":"6.12")");
  EXPECT_THAT(DifferencesOf({}, after), IsEmpty());
}

TEST(SavedMachines, DifferInTheMovedKeyboardAloneWhereBusesAreRenumberedToo) {
  SavedMachine after;
  after.Move(kKeyboardItem, "Bus 01  Device   2 Port 04", "1-3.5");
  after.Replace("Linux 6.1.0-56-amd64", "Linux 6.12.9-amd64");
  after.Renumber({{1, 3}, {2, 4}, {3, 1}, {4, 2}});
  EXPECT_THAT(
      DifferencesOf({}, after),
      ElementsAre("> 1-3.1 -> 93-3.5: keyboard 0627:0001 \"QEMU USB Keyboard\", serial \"KBD-0001\""));
}

TEST(SavedMachines, DifferInAStickThatGainsAKeyboard) {
  SavedMachine after;
  json& facts = after.Facts(kStickItem);
  facts["kinds"] = {"keyboard", "mass storage"};
  facts["interfaces"].push_back({{"configuration", 1},
                                 {"number", 1},
                                 {"setting", 0},
                                 {"active", true},
                                 {"class", "03"},
                                 {"subclass", "01"},
                                 {"protocol", "01"},
                                 {"driver", "usbhid"}});
  EXPECT_THAT(
      DifferencesOf({}, after),
      ElementsAre("~ 2-1: keyboard, mass storage 46f4:0001 \"QEMU USB HARDDRIVE\", serial \"STICK01\"",
                  "    kinds: mass storage -> keyboard, mass storage",
                  "    interface 1.1: none -> 03/01/01, driver \"usbhid\""));
  EXPECT_THAT(DifferencesOf({}, after, {"kinds", "interfaces"}), IsEmpty());
}

TEST(SavedMachines, DifferInDriverRevisionPowerAndSpeed) {
  SavedMachine after;
  json& facts = after.Facts(kStickItem);
  facts["interfaces"][0]["driver"] = "uas";
  facts["revision"] = "2.10";
  facts["maxPower"] = 896;
  facts["speed"] = 10000;
  EXPECT_THAT(DifferencesOf({}, after),
              ElementsAre("~ 2-1: mass storage 46f4:0001 \"QEMU USB HARDDRIVE\", serial \"STICK01\"",
                          "    interface 1.0: 08/06/50, driver \"usb-storage\" -> 08/06/50, driver \"uas\"",
                          "    speed: 5 Gbit/s -> 10 Gbit/s", "    maxPower: 0 mA -> 896 mA",
                          "    revision: \"0.00\" -> \"2.10\""));
}

TEST(SavedMachines, DifferInTheSpeedOfADeviceInTheOtherHalfOfItsSocket) {
  SavedMachine after;
  after.Move(kStickItem, "Bus 01  Device   1 Port 00", "1-1");
  after.Facts(kStickItem)["speed"] = 480;
  EXPECT_THAT(DifferencesOf({}, after),
              ElementsAre("~ 1-1: mass storage 46f4:0001 \"QEMU USB HARDDRIVE\", serial \"STICK01\"",
                          "    speed: 5 Gbit/s -> 480 Mbit/s"));
  // Where one of them does not know which ports share a socket, these are two places.
  for (json& port : after.Document()["kernel"]["ports"]) port["peer"] = port["connect"] = nullptr;
  EXPECT_THAT(DifferencesOf({}, after),
              ElementsAre("> 2-1 -> 1-1: mass storage 46f4:0001 \"QEMU USB HARDDRIVE\", serial \"STICK01\"",
                          "    speed: 5 Gbit/s -> 480 Mbit/s"));
}

TEST(SavedMachines, DifferInHowASocketIsConnected) {
  SavedMachine after;
  after.PortFacts("Bus 01  Device   1 Port 04")["connect"] = "hardwired";
  EXPECT_THAT(DifferencesOf({}, after),
              ElementsAre("~ 1-5: port", "    connect: \"unknown\" -> \"hardwired\""));
}

TEST(SavedMachines, DifferInThePortsThatShareASocket) {
  SavedMachine after;
  after.PortFacts("Bus 01  Device   1 Port 00")["peer"] = "2-2";
  after.PortFacts("Bus 02  Device   1 Port 01")["peer"] = "1-1";
  after.PortFacts("Bus 01  Device   1 Port 01")["peer"] = nullptr;
  after.PortFacts("Bus 02  Device   1 Port 00")["peer"] = nullptr;
  EXPECT_THAT(DifferencesOf({}, after, {}), testing::IsSupersetOf({"    peer: \"2-1\" -> \"2-2\""}));
  EXPECT_THAT(DifferencesOf({}, after, {"peer"}),
              testing::Not(testing::Contains(testing::HasSubstr("    peer"))));
}

TEST(SavedMachines, DifferInNothingThatOneOfThemDoesNotKnow) {
  SavedMachine list;
  for (json& device : list.Document()["kernel"]["devices"]) device["nodes"] = device["name"] = nullptr;
  for (json& port : list.Document()["kernel"]["ports"]) {
    for (const char* member : {"name", "peer", "connect", "state"}) port[member] = nullptr;
  }
  SavedMachine old;
  old.Document().erase("kernel");
  old.Document().erase("origin");
  old.Document()["schema"] = "usbinfo.inventory/1";
  SavedMachine poor;
  for (json& device : poor.Document()["kernel"]["devices"]) {
    for (const char* member : {"speed", "maxPower", "revision"}) device[member] = nullptr;
  }
  for (const SavedMachine& other : {list, old, poor}) {
    EXPECT_THAT(DifferencesOf({}, other), IsEmpty());
    EXPECT_THAT(DifferencesOf(other, {}), IsEmpty());
  }
}

TEST(SavedMachines, DifferInNoSpeedThatADeviceListCannotTellFromAnother) {
  SavedMachine sysfs;
  sysfs.Facts(kStickItem)["speed"] = 20000;
  SavedMachine list;
  list.Facts(kStickItem)["speed"] = 10000;
  EXPECT_THAT(DifferencesOf(sysfs, list), testing::SizeIs(2));
  list.Document()["origin"]["source"] = "list";
  EXPECT_THAT(DifferencesOf(sysfs, list), IsEmpty());
}

TEST(SavedMachines, DifferInASettingThatIsNotUsedOnlyWhereBothWouldHaveIt) {
  SavedMachine after;
  json setting = after.Facts(kStickItem)["interfaces"][0];
  setting["setting"] = 1;
  setting["active"] = false;
  setting["protocol"] = "62";
  after.Facts(kStickItem)["interfaces"].push_back(setting);
  EXPECT_THAT(
      DifferencesOf({}, after),
      ElementsAre("~ 2-1: mass storage 46f4:0001 \"QEMU USB HARDDRIVE\", serial \"STICK01\"",
                  "    interface 1.0 setting 1: none -> 08/06/62, driver \"usb-storage\", not active"));
  after.Document()["origin"]["source"] = "list";
  EXPECT_THAT(DifferencesOf({}, after), IsEmpty());
}

TEST(SavedMachines, DifferInAControllerThatIsAnother) {
  SavedMachine after;
  for (const char* className : {"KALDO_USBHub", "KALDO_USBController"}) {
    after.Instance(className, "Bus 03  Device   1")["Description"] = "OHCI Host Controller";
  }
  after.Instance("KALDO_USBHub", "Bus 03  Device   1")["SerialNumber"] = "0000:00:07.0";
  after.Facts("Bus 03  Device   1")["serial"] = "0000:00:07.0";
  after.Facts("Bus 03  Device   1")["product"] = "OHCI Host Controller";
  EXPECT_THAT(
      DifferencesOf({}, after),
      ElementsAre("- usb3: controller \"EHCI Host Controller\"",
                  "+ usb3: controller \"OHCI Host Controller\"",
                  "- usb3: hub 1d6b:0002 \"EHCI Host Controller\", serial \"0000:00:02.0\", with 6 ports",
                  "+ usb3: hub 1d6b:0002 \"OHCI Host Controller\", serial \"0000:00:07.0\", with 6 ports"));
}

}  // namespace
}  // namespace usbinfo_test
