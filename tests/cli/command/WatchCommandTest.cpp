// `usbinfo watch` as people run it, on the machine of the tests, where nothing is plugged in meanwhile: the
// comparison with a baseline, its end, and messages for what cannot be watched.
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/support/ForkedChild.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

/// An inventory of another machine, which differs from any.
std::string OtherMachine(const TemporaryFolder& folder) {
  InventoryBuilder builder("elsewhere");
  builder.AddDevice(builder.AddBus(99, 4), 2, 7, {"Stick", "S1"});
  builder.Document()["origin"] = OriginExample();
  builder.Document()["origin"]["masked"] = nullptr;
  builder.Document()["origin"]["selection"] = nullptr;
  builder.Document()["origin"]["findings"] = json::array();
  return folder.File("other.json", builder.Text());
}

json WithoutTimes(json difference) {
  for (const char* side : {"old", "new"}) difference[side]["collected"] = nullptr;
  return difference;
}

void ExpectWatchRefused(const CommandResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("usbinfo: " + message));
}

TEST(Watch, EndsAtTheTimeoutAndPrintsNothingWhereNothingChanges) {
  const CommandResult result = RunUsbinfo({"watch", "--timeout", "1ms"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
}

TEST(Watch, WorksAsAnOrdinaryUser) {
  const CommandResult result = Command({"watch", "--timeout", "1ms"}).AsOrdinaryUser().Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
}

TEST(Watch, PrintsWhatDiffPrintsOfTheBaseline) {
  const TemporaryFolder folder;
  const std::string baseline = OtherMachine(folder);
  const CommandResult result =
      RunUsbinfo({"watch", "--baseline", baseline, "--count", "1", "--format", "jsonl"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(Lines(result.output).size(), 1U);
  const json line = json::parse(result.output);
  EXPECT_EQ(line["sequence"], 1);
  EXPECT_EQ(line["machine"], line["difference"]["new"]["machine"]);
  const json difference = json::parse(RunUsbinfo({"diff", baseline, "--format", "json"}).output);
  EXPECT_EQ(WithoutTimes(line["difference"]), WithoutTimes(difference));
}

TEST(Watch, TakesTheBaselineFromStandardInput) {
  const TemporaryFolder folder;
  const CommandResult result =
      Command({"watch", "--baseline", "-", "--count", "1"}).Input(ReadFile(OtherMachine(folder))).Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("\"elsewhere\" (2026-11-21 12:00:00 UTC) -> "));
  EXPECT_THAT(result.output, HasSubstr("\n- bus 99, port 2: device 1234:5678 \"Stick\", serial \"S1\"\n"));
}

class WatchSignalsTest : public testing::TestWithParam<int> {};

TEST_P(WatchSignalsTest, EndTheWatchInGoodOrderAfterWhatWasPrinted) {
  const TemporaryFolder folder;
  const std::string baseline = OtherMachine(folder);
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe(ends), 0);
  const sys::FileDescriptor reader(ends[0]);
  sys::FileDescriptor writer(ends[1]);
  const pid_t command = StartChild([&] {
    ::dup2(writer.Get(), STDOUT_FILENO);
    ::execl(COMMAND_PATH, COMMAND_PATH, "watch", "--format", "jsonl", "--baseline", baseline.c_str(),
            nullptr);
    return 1;
  });
  writer.Close();
  std::string output(1, '\0');
  // The line is there before the command ends.
  EXPECT_EQ(::read(reader.Get(), output.data(), 1), 1);
  ::kill(command, GetParam());
  EXPECT_EQ(EndOfChild(command), 0);
  output += sys::ReadAll(reader.Get());
  EXPECT_EQ(json::parse(output)["sequence"], 1);
}

INSTANTIATE_TEST_SUITE_P(Signals, WatchSignalsTest, testing::Values(SIGINT, SIGTERM),
                         [](const auto& row) { return "Signal" + std::to_string(row.param); });

TEST(Watch, EndsWhenNobodyReadsItsOutput) {
  const TemporaryFolder folder;
  EXPECT_EQ(Command({"watch", "--baseline", OtherMachine(folder)}).OutputToClosedPipe().Run().status,
            -SIGPIPE);
}

TEST(Watch, RefusesABaselineThatDoesNotCompare) {
  const TemporaryFolder folder;
  const std::string path = folder.File("saved.json");
  const json whole = json::parse(ReadFile(OtherMachine(folder)));
  const auto refuse = [&](const char* member, const json& value, const std::string& message) {
    json changed = whole;
    changed["origin"][member] = value;
    folder.File("saved.json", changed.dump());
    ExpectWatchRefused(RunUsbinfo({"watch", "--baseline", path, "--timeout", "0"}), path + message);
  };
  refuse("selection", OriginExample()["selection"], " holds only a part of an inventory; save it without ");
  refuse("masked", {{"key", nullptr}},
         " and this machine cannot be compared: the serial numbers are masked in only");
  refuse("findings", OriginExample()["findings"],
         ": the kernel does not write lines 17, 19 of the device list");
}

TEST(Watch, HoldsTheMachineAgainstAPolicyAndRefusesAWrongOne) {
  const TemporaryFolder folder;
  const std::string wrong = folder.File("wrong.conf", "allow\npermit\n");
  ExpectWatchRefused(RunUsbinfo({"watch", "--policy", wrong}), wrong + ":2:1: ");
  ExpectWatchRefused(RunUsbinfo({"watch", "--policy", (folder.Path() / "none").string()}),
                     "cannot read " + (folder.Path() / "none").string() +
                         ": No such file or directory; name a file that holds a policy");
  ExpectWatchRefused(RunUsbinfo({"watch", "--policy", "-", "--baseline", "-"}),
                     "standard input holds one file: ");
  const CommandResult result = Command({"watch", "--policy", "-", "--baseline", OtherMachine(folder),
                                        "--count", "1", "--format", "jsonl"})
                                   .Input("allow\n")
                                   .Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.output)["notAllowed"], json::array());
}

TEST(Watch, RefusesValuesOfItsOptionsThatItCannotTake) {
  ExpectWatchRefused(RunUsbinfo({"watch", "--settle", "2m"}), "--settle: must be 60 seconds at most; see ");
  ExpectWatchRefused(RunUsbinfo({"watch", "--timeout", "soon"}), "--timeout: must be a whole number with ");
  ExpectWatchRefused(RunUsbinfo({"watch", "--count", "0"}), "--count: must be a whole number from 1 on");
  ExpectWatchRefused(RunUsbinfo({"watch", "--mask-serials", "--mask-key", "-"}),
                     "--mask-key: the key is read for ");
  ExpectWatchRefused(RunUsbinfo({"watch", "--format", "json"}),
                     "--format: \"json\" is not one of text, jsonl");
}

}  // namespace
}  // namespace usbinfo_test
