// `usbinfo check` as people run it: where the policy and the devices come from, exit statuses, and a message
// of one line for every failure.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kNoMouse = "block 0627:0001 name \"QEMU USB Mouse\"\nallow\n";

constexpr const char* kMouseRefused =
    "1-3.2: mouse 0627:0001 \"QEMU USB Mouse\", serial \"89126-0000:00:01.0-3.2\": blocked by standard "
    "input:1: "
    "block 0627:0001 name \"QEMU USB Mouse\"\n"
    "1 of 11 devices not allowed\n";

/// A list in which the product of device 9 forges a second "T:" line.
constexpr const char* kForgedCheckedList =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\nP:  Vendor=1d6b ProdID=0002 Rev= "
    "6.01\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  9 Spd=12   MxCh= 0\nS:  Product=Stick\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=01 Cnt=01 Dev#=  8 Spd=12   MxCh= 0\n";

std::string CheckedList() {
  return CapturePath("vm-desktop-debugfs");
}

std::string SavedList() {
  return TEST_DATA_DIR "/expected/vm-desktop-debugfs.json";
}

/// Checks by a policy from standard input.
CommandResult RunCheck(const std::string& policy, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"check", "-"});
  return Command(std::move(arguments)).Input(policy).Run();
}

void ExpectCheckFailure(const CommandResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: " + message));
  EXPECT_EQ(Lines(result.errors).size(), 1U);
}

TEST(CheckCommand, ShowsWhatIsNotAllowedWithStatusOne) {
  for (const std::vector<std::string>& source : {std::vector<std::string>{CheckedList()},
                                                 {SavedList()},
                                                 {"--devices", CheckedList()},
                                                 {"--devices", SavedList()}}) {
    const CommandResult result = RunCheck(kNoMouse, source);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, kMouseRefused);
    EXPECT_EQ(result.errors, "");
  }
}

TEST(CheckCommand, PrintsNothingWhereAllIsAllowed) {
  const CommandResult result = RunCheck("allow", {CheckedList()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
}

TEST(CheckCommand, AllowsWhatTheFormatUsbguardPrints) {
  const TemporaryFolder folder;
  const std::string policy =
      folder.File("rules.conf", RunUsbinfo({"--devices", CheckedList(), "--format", "usbguard"}).output);
  EXPECT_EQ(RunUsbinfo({"check", policy, CheckedList()}).status, 0);
  EXPECT_EQ(RunUsbinfo({"check", policy, SavedList()}).status, 0);
  EXPECT_EQ(RunUsbinfo({"check", policy, CapturePath("vm-deep-hubs-debugfs")}).status, 1);
}

TEST(CheckCommand, TakesTheTargetForWhatNoRuleMatches) {
  EXPECT_EQ(RunCheck("block name \"QEMU USB Mouse\"", {CheckedList(), "--default", "allow"}).status, 1);
  EXPECT_EQ(RunCheck("block name \"no such device\"", {CheckedList(), "--default", "allow"}).status, 0);
  EXPECT_THAT(RunCheck("", {CheckedList(), "--default", "block"}).output,
              HasSubstr(": blocked, no rule matches\n"));
}

TEST(CheckCommand, PrintsADocumentEvenWhereAllIsAllowed) {
  const CommandResult result = RunCheck("allow", {CheckedList(), SavedList(), "--format", "json"});
  EXPECT_EQ(result.status, 0);
  const json document = json::parse(result.output);
  EXPECT_EQ(document["policy"], "standard input");
  EXPECT_EQ(document["inventories"].size(), 2U);
  EXPECT_EQ(document["inventories"][0]["notAllowedCount"], 0);
}

TEST(CheckCommand, NamesTheInventoryWhereThereAreSeveral) {
  const CommandResult result = RunCheck(kNoMouse, {CheckedList(), SavedList()});
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = Lines(result.output);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith(CheckedList() + ": 1-3.2: mouse "));
  EXPECT_THAT(lines[1], StartsWith(SavedList() + ": 1-3.2: mouse "));
  EXPECT_EQ(lines[2], "2 of 22 devices not allowed");
}

TEST(CheckCommand, WritesAFileInstead) {
  const TemporaryFolder folder;
  const std::string file = folder.File("result", "old");
  EXPECT_EQ(RunCheck(kNoMouse, {CheckedList(), "--output", file}).status, 1);
  EXPECT_EQ(ReadFile(file), kMouseRefused);
  const std::string policy = folder.File("rules.conf", "allow");
  ExpectCheckFailure(RunUsbinfo({"check", policy, CheckedList(), "--output", policy}), "--output");
  EXPECT_EQ(ReadFile(policy), "allow");
}

TEST(CheckCommand, RefusesWhatIsNoPolicy) {
  ExpectCheckFailure(RunCheck("allow\nallow id 12\n", {CheckedList()}),
                     "standard input:2:10: expected an id such as ");
  ExpectCheckFailure(RunUsbinfo({"check", "/nonexistent/rules", CheckedList()}),
                     "cannot read /nonexistent/rules: ");
  ExpectCheckFailure(RunCheck("allow if localtime(08:00-17:00)", {CheckedList()}),
                     "standard input:1:10: the condition localtime depends on more than the device, ");
}

TEST(CheckCommand, RefusesRulesThatNeedWhatTheInventoryLacks) {
  ExpectCheckFailure(RunCheck("block 0627:0001 hash \"x\"\nallow", {CheckedList()}),
                     "standard input:1: the rule needs hash of 1-3.1, which is not known: ");
  ExpectCheckFailure(RunCheck("allow with-connect-type { \"hotplug\" }", {CheckedList()}),
                     "standard input:1: the rule needs with-connect-type of ");
}

TEST(CheckCommand, TakesNothingButAnInventoryForAMachineWithoutDevices) {
  const TemporaryFolder folder;
  const std::string policy = folder.File("rules.conf", "allow");
  const std::string neither = " holds neither a JSON inventory nor a device list; save one with ";
  for (const std::string text : {"", "\n", "usb-devices: command not found\n"}) {
    const std::string file = folder.File("list", text);
    ExpectCheckFailure(RunUsbinfo({"check", policy, file}), file + neither);
    ExpectCheckFailure(RunUsbinfo({"check", policy, "--devices", file}), file + neither);
    ExpectCheckFailure(Command({"check", policy, "-"}).Input(text).Run(), "standard input" + neither);
    const CommandResult nagios = Command({"check", "--nagios", policy, "-"}).Input(text).Run();
    EXPECT_EQ(nagios.status, 3);
    EXPECT_THAT(nagios.output, StartsWith("USB UNKNOWN: standard input" + neither));
  }
  ExpectCheckFailure(
      RunUsbinfo({"check", policy, "/nonexistent/list"}),
      "cannot read /nonexistent/list: No such file or directory; name a file that holds a JSON "
      "inventory or a device list\n");
  json empty = json::parse(ReadFile(SavedList()));
  for (json& instances : empty["classes"]) instances.clear();
  empty["kernel"] = {{"devices", json::array()}, {"ports", json::array()}};
  const std::string saved = folder.File("saved.json", empty.dump());
  EXPECT_EQ(RunUsbinfo({"check", "--nagios", policy, saved}).output,
            "USB OK: no USB device found | devices=0;;;0 not_allowed=0;;;0 findings=0;;;0\n");
}

TEST(CheckCommand, DependsOnNothingThatTheDeviceListLeavesOut) {
  const TemporaryFolder folder;
  const std::string inUseAlone =
      folder.File("list",
                  "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  7 Spd=12  MxCh= 0\n"
                  "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  2\n"
                  "P:  Vendor=04f2 ProdID=0718 Rev=00.03\n"
                  "C:  #Ifs= 1 Cfg#= 1 Atr=80 MxPwr=100mA\n"
                  "I:  If#= 0 Alt= 0 #EPs= 0 Cls=08(stor.) Sub=06 Prot=50 Driver=usb-storage\n");
  const std::string blocked = CapturePath("usbdevices-unauthorized-stale-if");
  const std::string noKeyboards = "block 04f2:* with-interface one-of { 03:*:* }\nallow";
  for (const std::string& list : {inUseAlone, blocked}) {
    const std::string saved = folder.File("saved.json", RunUsbinfo({"--devices", list, "-j"}).output);
    for (const std::string& inventory : {list, saved}) {
      const CommandResult result = RunCheck(noKeyboards, {inventory});
      EXPECT_EQ(result.status, 2);
      EXPECT_THAT(result.errors, HasSubstr("standard input:1: the rule needs with-interface of "));
      EXPECT_EQ(RunCheck("block 04f3:* with-interface one-of { 03:*:* }\nallow", {inventory}).status, 0);
      EXPECT_EQ(RunUsbinfo({"--devices", inventory, "--format", "usbguard"}).status, 2);
    }
  }
  const std::string withoutNumbers =
      folder.File("numberless",
                  "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  7 Spd=12  MxCh= 0\n"
                  "I:* If#= 0 Alt= 0 #EPs= 0 Cls=08(stor.) Sub=06 Prot=50 Driver=usb-storage\n");
  EXPECT_THAT(RunCheck("block 04f2:*\nallow", {withoutNumbers}).errors,
              HasSubstr("standard input:1: the rule needs id of "));
}

TEST(CheckCommand, RefusesSuspectListsUnlessTheyAreAllowed) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", kForgedCheckedList);
  const std::string saved = folder.File("saved.json", RunUsbinfo({"--devices", list, "-j"}).output);
  for (const std::string& suspect : {list, saved}) {
    ExpectCheckFailure(RunCheck("allow", {suspect}), suspect + ": the kernel does not write lines 5, 7 ");
    const CommandResult allowed = RunCheck("allow", {suspect, "--allow-suspect", "--format", "json"});
    EXPECT_EQ(allowed.status, 0);
    EXPECT_EQ(json::parse(allowed.output)["inventories"][0]["suspect"], true);
  }
}

TEST(CheckCommand, RefusesOptionsThatContradictEachOther) {
  ExpectCheckFailure(RunCheck("allow", {"-"}), "standard input holds one file: ");
  ExpectCheckFailure(RunCheck("allow", {"--devices", CheckedList(), SavedList()}),
                     "--devices names an inventory: ");
  ExpectCheckFailure(RunCheck("allow", {CheckedList(), "--source", "sysfs"}),
                     "--source is for this machine: ");
  ExpectCheckFailure(RunCheck("allow", {SavedList(), "--as-is"}), "--as-is is for device lists, and ");
  ExpectCheckFailure(RunUsbinfo({"check"}), "POLICY");
}

/// The line and the exit status of a check for Nagios, which never prints an error.
void ExpectNagios(const CommandResult& result, int status, const std::string& line) {
  EXPECT_EQ(result.output, line + "\n");
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.errors, "");
}

TEST(CheckCommand, PrintsOneLineForNagiosWithItsStatus) {
  ExpectNagios(RunCheck("allow", {"--nagios", CheckedList()}), 0,
               "USB OK: 11 devices allowed | devices=11;;;0 not_allowed=0;;;0 findings=0;;;0");
  ExpectNagios(RunCheck(kNoMouse, {"--nagios", CheckedList()}), 2,
               "USB CRITICAL: 1 of 11 devices not allowed: 1-3.2: mouse 0627:0001 \"QEMU USB Mouse\", serial "
               "\"89126-0000:00:01.0-3.2\" | devices=11;;;0 not_allowed=1;;;0 findings=0;;;0");
  EXPECT_THAT(
      RunCheck("block", {"--nagios", CheckedList(), SavedList()}).output,
      AllOf(StartsWith("USB CRITICAL: 22 of 22 devices not allowed: " + CheckedList() + ": usb1: hub "),
            HasSubstr("; and 19 more | devices=22;;;0 not_allowed=22;;;0 ")));
}

TEST(CheckCommand, WarnsNagiosOfSuspectListsUnlessTheyAreAllowed) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", kForgedCheckedList);
  const std::string numbers = " | devices=2;;;0 not_allowed=0;;;0 findings=2;;;0";
  ExpectNagios(RunCheck("allow", {"--nagios", list}), 1,
               "USB WARNING: 2 devices allowed; a device may have forged lines of the device list" + numbers);
  ExpectNagios(RunCheck("allow", {"--nagios", "--allow-suspect", list}), 0,
               "USB OK: 2 devices allowed" + numbers);
  EXPECT_EQ(RunCheck("block", {"--nagios", list}).status, 2);
}

TEST(CheckCommand, ReportsEveryFailureToNagiosAsUnknown) {
  const auto expectUnknown = [](const CommandResult& result, const std::string& message) {
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.output, StartsWith("USB UNKNOWN: " + message));
    EXPECT_EQ(Lines(result.output).size(), 1U);
    EXPECT_EQ(result.errors, "");
  };
  expectUnknown(RunCheck("allow it", {"--nagios", CheckedList()}), "standard input:1:7: expected id, ");
  expectUnknown(RunCheck("allow", {"--nagios", "/nonexistent/|"}),
                R"(cannot read /nonexistent/\x7c: No such file or directory)");
  expectUnknown(RunCheck("allow", {"--nagios", "--devices"}), "--devices requires a value");
  expectUnknown(RunCheck("allow", {"--nagios", "--bogus"}), "unknown option --bogus");
  expectUnknown(RunUsbinfo({"check", "--nagios"}), "");
  expectUnknown(RunUsbinfo({"check", "--nagios=1", "-", CheckedList()}), "--nagios ");
  expectUnknown(RunUsbinfo({"check", "--nagios-all", "-", CheckedList()}), "unknown option --nagios-all");
  const CommandResult help = RunUsbinfo({"help", "check", "--nagios"});
  EXPECT_EQ(help.status, 2);
  EXPECT_EQ(help.output, "");
  for (const std::vector<std::string>& other :
       {std::vector<std::string>{"--format", "json"}, {"--output", "x"}}) {
    std::vector<std::string> arguments = other;
    arguments.insert(arguments.end(), {"--nagios", CheckedList()});
    expectUnknown(RunCheck("allow", arguments), other[0]);
  }
  const CommandResult full = Command({"check", "--nagios", "-", CheckedList()}).OutputTo("/dev/full").Run();
  EXPECT_EQ(full.status, 3);
  EXPECT_THAT(full.errors, HasSubstr("cannot write standard output"));
}

TEST(CheckCommand, LetsNoDeviceForgeTheLineForNagios) {
  json document = json::parse(ReadFile(SavedList()));
  json& facts = document["kernel"]["devices"];
  for (json& device : facts) device["product"] = "x | devices=0\nUSB OK: " + std::string(3000, '|');
  const std::string cut = R"(\x7c [...] \x7c)";
  const TemporaryFolder folder;
  const std::string file = folder.File("saved.json", document.dump());
  const std::string line = RunCheck("block", {"--nagios", file}).output;
  EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 1);
  EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
  EXPECT_THAT(line, AllOf(HasSubstr(R"("x \x7c devices=0\nUSB OK: \x7c)"), HasSubstr(cut),
                          EndsWith(" findings=0;;;0\n")));
  EXPECT_LT(line.size(), 2200U);
}

}  // namespace
}  // namespace usbinfo_test
