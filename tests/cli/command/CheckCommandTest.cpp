// `usbinfo check` as people run it: where the policy and the devices come from, exit statuses, and a message
// of one line for every failure.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::json;
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
constexpr const char* kForged =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\nP:  Vendor=1d6b ProdID=0002 Rev= "
    "6.01\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  9 Spd=12   MxCh= 0\nS:  Product=Stick\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=01 Cnt=01 Dev#=  8 Spd=12   MxCh= 0\n";

std::string List() {
  return CapturePath("vm-desktop-debugfs");
}

std::string Saved() {
  return TEST_DATA_DIR "/expected/vm-desktop-debugfs.json";
}

/// Checks by a policy from standard input.
CommandResult Check(const std::string& policy, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"check", "-"});
  return Command(std::move(arguments)).Input(policy).Run();
}

void ExpectRefused(const CommandResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: " + message));
  EXPECT_EQ(Lines(result.errors).size(), 1U);
}

TEST(Check, ShowsWhatIsNotAllowedWithStatusOne) {
  for (const std::vector<std::string>& source :
       {std::vector<std::string>{List()}, {Saved()}, {"--devices", List()}, {"--devices", Saved()}}) {
    const CommandResult result = Check(kNoMouse, source);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, kMouseRefused);
    EXPECT_EQ(result.errors, "");
  }
}

TEST(Check, PrintsNothingWhereAllIsAllowed) {
  const CommandResult result = Check("allow", {List()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
}

TEST(Check, AllowsWhatTheFormatUsbguardPrints) {
  const TemporaryFolder folder;
  const std::string policy =
      folder.File("rules.conf", RunUsbinfo({"--devices", List(), "--format", "usbguard"}).output);
  EXPECT_EQ(RunUsbinfo({"check", policy, List()}).status, 0);
  EXPECT_EQ(RunUsbinfo({"check", policy, Saved()}).status, 0);
  EXPECT_EQ(RunUsbinfo({"check", policy, CapturePath("vm-deep-hubs-debugfs")}).status, 1);
}

TEST(Check, TakesTheTargetForWhatNoRuleMatches) {
  EXPECT_EQ(Check("block name \"QEMU USB Mouse\"", {List(), "--default", "allow"}).status, 1);
  EXPECT_EQ(Check("block name \"no such device\"", {List(), "--default", "allow"}).status, 0);
  EXPECT_THAT(Check("", {List(), "--default", "block"}).output, HasSubstr(": blocked, no rule matches\n"));
}

TEST(Check, PrintsADocumentEvenWhereAllIsAllowed) {
  const CommandResult result = Check("allow", {List(), Saved(), "--format", "json"});
  EXPECT_EQ(result.status, 0);
  const json document = json::parse(result.output);
  EXPECT_EQ(document["policy"], "standard input");
  EXPECT_EQ(document["inventories"].size(), 2U);
  EXPECT_EQ(document["inventories"][0]["refused"], 0);
}

TEST(Check, NamesTheInventoryWhereThereAreSeveral) {
  const CommandResult result = Check(kNoMouse, {List(), Saved()});
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = Lines(result.output);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith(List() + ": 1-3.2: mouse "));
  EXPECT_THAT(lines[1], StartsWith(Saved() + ": 1-3.2: mouse "));
  EXPECT_EQ(lines[2], "2 of 22 devices not allowed");
}

TEST(Check, WritesAFileInstead) {
  const TemporaryFolder folder;
  const std::string file = folder.File("result", "old");
  EXPECT_EQ(Check(kNoMouse, {List(), "--output", file}).status, 1);
  EXPECT_EQ(ReadFile(file), kMouseRefused);
  const std::string policy = folder.File("rules.conf", "allow");
  ExpectRefused(RunUsbinfo({"check", policy, List(), "--output", policy}), "--output");
  EXPECT_EQ(ReadFile(policy), "allow");
}

TEST(Check, RefusesWhatIsNoPolicy) {
  ExpectRefused(Check("allow\nallow id 12\n", {List()}), "standard input:2:10: expected an id such as ");
  ExpectRefused(RunUsbinfo({"check", "/nonexistent/rules", List()}), "cannot read /nonexistent/rules: ");
  ExpectRefused(Check("allow if localtime(08:00-17:00)", {List()}),
                "standard input:1:10: the condition localtime depends on more than the device, ");
}

TEST(Check, RefusesRulesThatNeedWhatTheInventoryLacks) {
  ExpectRefused(Check("block 0627:0001 hash \"x\"\nallow", {List()}),
                "standard input:1: the rule needs hash of 1-3.1, which is not known: ");
  ExpectRefused(Check("allow with-connect-type { \"hotplug\" }", {List()}),
                "standard input:1: the rule needs with-connect-type of ");
}

TEST(Check, RefusesSuspectListsUnlessTheyAreAllowed) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", kForged);
  const std::string saved = folder.File("saved.json", RunUsbinfo({"--devices", list, "-j"}).output);
  for (const std::string& suspect : {list, saved}) {
    ExpectRefused(Check("allow", {suspect}), suspect + ": the kernel does not write lines 5, 7 ");
    const CommandResult allowed = Check("allow", {suspect, "--allow-suspect", "--format", "json"});
    EXPECT_EQ(allowed.status, 0);
    EXPECT_EQ(json::parse(allowed.output)["inventories"][0]["suspect"], true);
  }
}

TEST(Check, RefusesOptionsThatContradictEachOther) {
  ExpectRefused(Check("allow", {"-"}), "standard input holds one file: ");
  ExpectRefused(Check("allow", {"--devices", List(), Saved()}), "--devices names an inventory: ");
  ExpectRefused(Check("allow", {List(), "--source", "sysfs"}), "--source is for this machine: ");
  ExpectRefused(Command({"check"}).Run(), "");
}

}  // namespace
}  // namespace usbinfo_test
