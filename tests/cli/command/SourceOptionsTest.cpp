// Where the text comes from that the plug-in reads, and what the command says of it.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kRepaired =
    "usbinfo: the device list has wrong parents for 3 devices; they were corrected (--as-is keeps them)\n";

/// A list in which the product of device 9 forges a second "T:" line.
constexpr const char* kForged =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\nP:  Vendor=1d6b ProdID=0002 Rev= "
    "6.01\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  9 Spd=12   MxCh= 0\nS:  Product=Stick\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=01 Cnt=01 Dev#=  8 Spd=12   MxCh= 0\n";

CommandResult RunOnInput(const std::string& input, std::vector<std::string> options) {
  options.insert(options.begin(), {"--devices", "-"});
  return Command(std::move(options)).Input(input).Run();
}

void ExpectRefused(const CommandResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: " + message));
  EXPECT_EQ(Lines(result.errors).size(), 1U);
}

TEST(ListFormat, IsTheListAsItCameWhereThatIsAsked) {
  for (const std::string& path : CapturePaths()) {
    EXPECT_EQ(RunUsbinfo({"--devices", path, "--as-is", "--format", "list"}).output, ReadFile(path));
  }
}

TEST(ListFormat, HasTheParentsMendedAndSerialNumbersMaskedAndLeavesNothingOut) {
  const std::string path = CapturePath("vm-desktop-usb-devices");
  const CommandResult repaired = RunUsbinfo({"--devices", path, "--format", "list", "--mask-serials"});
  EXPECT_EQ(repaired.errors, kRepaired);
  EXPECT_THAT(repaired.output, HasSubstr("Bus=01 Lev=01 Prnt=01 Port=03 Cnt=01 Dev#=  3 "));
  EXPECT_THAT(repaired.output, HasSubstr("SerialNumber=masked-"));
  EXPECT_EQ(Lines(repaired.output).size(), Lines(ReadFile(path)).size());
}

TEST(ListFormat, IsRefusedForASavedInventoryAndASelection) {
  const std::string saved = Expected("vm-desktop-debugfs.json");
  ExpectRefused(RunOnInput(saved, {"--format", "list"}), "a saved inventory does not hold its device list; ");
  ExpectRefused(RunOnInput("", {"--format", "list", "-s", "1:3"}),
                "the format list prints the whole device list: ");
}

TEST(AsIsOption, ShowsWhatThePluginMakesOfTheListInAnyHost) {
  const auto hubs = [](const std::vector<std::string>& options) {
    std::vector<std::string> words = {"--devices", CapturePath("proc-2.6.16-4bus-mtt7"), "-j"};
    words.insert(words.end(), options.begin(), options.end());
    return json::parse(RunUsbinfo(words).output)["classes"]["KALDO_USBHub"].size();
  };
  // The device after a hub with a translator for each port is taken for a hub.
  EXPECT_EQ(hubs({"--as-is"}), hubs({}) + 1);
}

TEST(SourceOption, IsRefusedWithAList) {
  for (const char* const way : {"auto", "sysfs", "plugin"}) {
    ExpectRefused(RunOnInput("", {"--source", way}), "--source is for this machine: ");
  }
}

TEST(OptionsOfCollecting, AreRefusedWithASavedInventory) {
  const std::string saved = Expected("vm-desktop-debugfs.json");
  const std::vector<std::vector<std::string>> options = {
      {"--request", "KALDO_USBHub"}, {"--as-is"}, {"--plugin", "/tmp"}, {"--system-name", "x"}};
  for (const std::vector<std::string>& option : options) {
    ExpectRefused(RunOnInput(saved, option),
                  option.front() + " is for device lists, and standard input holds a saved ");
  }
}

TEST(Findings, AreWarnedOfByLineAndNoted) {
  const CommandResult result = RunOnInput(kForged, {"--system-name", "x", "-j"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors,
            "usbinfo: the kernel does not write lines 5, 7 of the device list, of \"Bus 01  Device   9\" "
            "(two-t-lines); "
            "a device may have forged this\n"
            "usbinfo: the kernel does not write line 7 of the device list, of \"Bus 01  Device   9\" "
            "(line-behind-string); a device may have forged this\n");
  const json findings = json::parse(result.output)["origin"]["findings"];
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0],
            json({{"code", "two-t-lines"}, {"lines", {5, 7}}, {"device", "Bus 01  Device   9"}}));
}

TEST(Findings, StopADiffUnlessTheyAreAllowed) {
  const TemporaryFolder folder;
  const std::string list = folder.File("list", kForged);
  const std::string saved = folder.File("saved.json", RunUsbinfo({"--devices", list, "-j"}).output);
  for (const std::string& suspect : {list, saved}) {
    ExpectRefused(RunUsbinfo({"diff", suspect, list}), suspect + ": the kernel does not write lines 5, 7 ");
    EXPECT_EQ(RunUsbinfo({"diff", "--allow-suspect", suspect, list}).status, 0);
  }
}

}  // namespace
}  // namespace usbinfo_test
