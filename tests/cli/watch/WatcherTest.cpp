// When the watch looks at the machine, what it reports, and when it ends, on a machine that follows a script.
#include <gmock/gmock.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/policy/PolicyParser.h"
#include "cli/watch/PolicyAudit.h"
#include "cli/watch/WatchReport.h"
#include "cli/watch/Watcher.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/watch/ScriptedMachine.h"

using cli::UsbEvent;
using cli::Watcher;
using cli::WatchSettings;
using nlohmann::json;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

using namespace std::chrono_literals;

const Plugged kStick = {2, {"Stick", "S1", 0x0781, 0x5581}};

class WatcherTest : public testing::Test {
 protected:
  /// Follows the machine from what it has now, to the end of the script; gives whether the last look
  /// succeeded.
  bool Follow(const WatchSettings& settings = {}) {
    Watcher watcher = NewWatcher(settings, machine.plugged);
    return watcher.Follow();
  }

  /// The same with a policy, which what is there at the start is held against, too.
  bool FollowWithPolicy(const std::string& rules) {
    cli::PolicyAudit audit(cli::ParsePolicy(rules, "rules.conf"));
    Watcher watcher = NewWatcher({}, machine.plugged, &audit);
    watcher.Compare(machine.Collect());
    return watcher.Follow();
  }

  Watcher NewWatcher(const WatchSettings& settings, const PluggedByName& known,
                     cli::PolicyAudit* audit = nullptr) {
    return Watcher({.events = machine,
                    .clock = machine,
                    .collect = [this] { return machine.Collect(); },
                    .print =
                        [this](const cli::WatchReport& report) {
                          times.push_back(machine.Elapsed());
                          texts.push_back(cli::RenderWatchText(report, false));
                          lines.push_back(json::parse(cli::RenderWatchJson(report)));
                        },
                    .audit = audit},
                   settings, cli::FromJson(InventoryOf(known).dump(), "known"));
  }

  ScriptedMachine machine;
  /// Of the reports: when they came, and what they say in both forms.
  std::vector<int> times;
  std::vector<std::string> texts;
  std::vector<json> lines;
};

TEST_F(WatcherTest, LooksAndReportsWhenNoEventHasComeForTheSettlingTime) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Send(1499ms, {.name = "1-2"});
  EXPECT_TRUE(Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(1999, 1999));
  EXPECT_THAT(times, ElementsAre(1999));
  EXPECT_EQ(Lines(texts.at(0)).at(1), "+ 1-2: device 0781:5581 \"Stick\", serial \"S1\"");
}

TEST_F(WatcherTest, LooksAtOnceWithoutASettlingTime) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Unplug(1001ms, "1-2");
  EXPECT_TRUE(Follow({.settle = 0ms}));
  EXPECT_THAT(times, ElementsAre(1000, 1001));
}

TEST_F(WatcherTest, LooksAfterTenSettlingTimesWhereEventsDoNotEnd) {
  for (milliseconds at = 1000ms; at <= 7000ms; at += 400ms) machine.Send(at, {.name = "1-2"});
  EXPECT_TRUE(Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(6000, 7500, 7500));
  EXPECT_THAT(times, IsEmpty());
}

TEST_F(WatcherTest, ReportsNothingWhereEventsHaveChangedNothing) {
  machine.plugged["1-2"] = kStick;
  machine.Unplug(1000ms, "1-2");
  machine.Plug(1100ms, "1-2", {3, kStick.model});
  EXPECT_TRUE(Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(1600, 1600));
  EXPECT_THAT(times, IsEmpty());
}

TEST_F(WatcherTest, ComparesEachLookWithTheOneBefore) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Unplug(3000ms, "1-2");
  EXPECT_TRUE(Follow());
  EXPECT_THAT(times, ElementsAre(1500, 3500));
  EXPECT_THAT(lines.at(0)["sequence"], 1);
  EXPECT_THAT(lines.at(0)["difference"]["added"].size(), 1U);
  EXPECT_THAT(lines.at(1)["sequence"], 2);
  EXPECT_THAT(lines.at(1)["difference"]["removed"].size(), 1U);
}

TEST_F(WatcherTest, EndsAfterTheNumberOfReports) {
  machine.Send(500ms, {.name = "1-2"});
  machine.Plug(2000ms, "1-2", kStick);
  machine.Unplug(4000ms, "1-2");
  machine.Plug(6000ms, "1-2", kStick);
  EXPECT_TRUE(Follow({.count = 2}));
  EXPECT_THAT(times, ElementsAre(2500, 4500));
  EXPECT_EQ(machine.Elapsed(), 4500);
}

TEST_F(WatcherTest, EndsAtTheTimeoutWithALastLookAtWhatHasNotSettled) {
  machine.Plug(2700ms, "1-2", kStick);
  EXPECT_TRUE(Follow({.timeout = 3000ms}));
  EXPECT_THAT(machine.Looks(), ElementsAre(3000));
  EXPECT_THAT(times, ElementsAre(3000));
}

TEST_F(WatcherTest, TakesALastLookWhenItIsStopped) {
  machine.Plug(1000ms, "1-2", kStick);
  Watcher watcher = NewWatcher({.settle = 60s}, {});
  machine.Stop(1500ms);
  machine.Unplug(1600ms, "1-2");
  EXPECT_TRUE(watcher.Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(1500));
  EXPECT_EQ(lines.at(0)["difference"]["added"].size(), 1U);
}

TEST_F(WatcherTest, TakesWhatHasComeBeforeItIsStopped) {
  machine.Stop(1000ms);
  machine.Plug(1000ms, "1-2", kStick);
  machine.Unplug(1000ms, "1-2");
  EXPECT_TRUE(Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(1000));
  EXPECT_EQ(lines.at(0)["cameAndWent"].size(), 1U);
}

TEST_F(WatcherTest, TakesOneLookAtEventsThatCameTogether) {
  for (int event = 0; event < 100; ++event) machine.Send(1000ms, {.name = "1-2"});
  EXPECT_TRUE(Follow({.settle = 0ms}));
  EXPECT_THAT(machine.Looks(), ElementsAre(1000, 1000));
}

TEST_F(WatcherTest, LooksAnewWhenEventsAreLostAndSaysSo) {
  machine.Do(1000ms, [this] { machine.plugged["1-2"] = kStick; });
  machine.Lose(1000ms);
  machine.Lose(3000ms);
  EXPECT_TRUE(Follow());
  EXPECT_THAT(times, ElementsAre(1500, 3500));
  EXPECT_EQ(lines.at(0)["difference"]["added"].size(), 1U);
  EXPECT_EQ(lines.at(0)["eventsLost"], true);
  EXPECT_EQ(lines.at(1)["difference"]["added"].size(), 0U);
  EXPECT_EQ(lines.at(1)["eventsLost"], true);
}

TEST_F(WatcherTest, ReportsADeviceThatCameAndWentBetweenTwoLooks) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Unplug(1300ms, "1-2");
  machine.Plug(3000ms, "1-3", kStick);
  EXPECT_TRUE(Follow());
  EXPECT_THAT(times, ElementsAre(1800, 3500));
  EXPECT_EQ(lines.at(0)["cameAndWent"],
            json::parse(R"([{"name": "1-2", "number": 2, "id": "0781:5581", "kinds": ["mass storage"]}])"));
  EXPECT_EQ(lines.at(1)["cameAndWent"], json::array());
}

TEST_F(WatcherTest, ReportsADeviceThatGoesJustBeforeItIsLookedAt) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Do(1500ms, [this] { machine.plugged.erase("1-2"); });
  for (const UsbEvent& event : EventsOfRemoving("1-2", kStick)) machine.Send(1501ms, event);
  EXPECT_TRUE(Follow());
  EXPECT_THAT(times, ElementsAre(1500));
  EXPECT_EQ(lines.at(0)["cameAndWent"].size(), 1U);
  EXPECT_EQ(lines.at(0)["difference"]["added"], json::array());
}

TEST_F(WatcherTest, ReportsADeviceThatCameAndWentInThePlaceOfOneThatIsThereAgain) {
  machine.plugged["1-2"] = {5, {"Mouse"}};
  machine.Unplug(1000ms, "1-2");
  machine.Plug(1100ms, "1-2", {6, kStick.model});
  machine.Unplug(1200ms, "1-2");
  machine.Plug(1300ms, "1-2", {7, {"Mouse"}});
  EXPECT_TRUE(Follow());
  EXPECT_THAT(times, ElementsAre(1800));
  EXPECT_EQ(lines.at(0)["cameAndWent"].size(), 1U);
  EXPECT_EQ(lines.at(0)["cameAndWent"][0]["number"], 6);
  EXPECT_EQ(lines.at(0)["difference"]["changed"], json::array());
}

TEST_F(WatcherTest, DoesNotTakeEventsAboutADeviceThatIsThereForItsComingAndGoing) {
  machine.plugged["1-2"] = kStick;
  for (const auto& events : {EventsOfAdding("1-2", kStick), EventsOfRemoving("1-2", kStick)}) {
    for (const UsbEvent& event : events) machine.Send(1000ms, event);
  }
  EXPECT_TRUE(Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(1500, 1500));
  EXPECT_THAT(times, IsEmpty());
}

TEST_F(WatcherTest, ReportsADeviceThatALookHasSeenAsRemovedAlone) {
  machine.plugged["1-2"] = kStick;
  for (const UsbEvent& event : EventsOfAdding("1-2", kStick)) machine.Send(1000ms, event);
  machine.Unplug(1100ms, "1-2");
  EXPECT_TRUE(Follow());
  EXPECT_EQ(lines.at(0)["difference"]["removed"].size(), 1U);
  EXPECT_EQ(lines.at(0)["cameAndWent"], json::array());
}

TEST_F(WatcherTest, ReportsHowABaselineDiffersBeforeItFollows) {
  machine.plugged["1-2"] = kStick;
  Watcher watcher = NewWatcher({.count = 1}, {{"1-3", {4, {"Mouse"}}}});
  watcher.Compare(machine.Collect());
  EXPECT_TRUE(watcher.Follow());
  EXPECT_THAT(machine.Looks(), ElementsAre(0));
  EXPECT_EQ(lines.at(0)["difference"]["added"].size(), 1U);
  EXPECT_EQ(lines.at(0)["difference"]["removed"].size(), 1U);
}

TEST_F(WatcherTest, DoesNotCompareWhatIsIgnored) {
  machine.plugged["1-2"] = {2, {"Mouse"}};
  machine.Do(1000ms, [this] { machine.plugged["1-2"].model.name = "Other"; });
  machine.Send(1000ms, {.name = "1-2"});
  EXPECT_TRUE(Follow({.ignored = {"Description"}}));
  EXPECT_THAT(times, IsEmpty());
}

TEST_F(WatcherTest, RepeatsALookThatFailedAndMissesNothing) {
  machine.Do(1000ms, [this] { machine.failure = "cannot read the device 1-2"; });
  machine.Plug(1000ms, "1-2", kStick);
  machine.Do(8000ms, [this] { machine.failure.clear(); });
  testing::internal::CaptureStderr();
  EXPECT_TRUE(Follow());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "usbinfo: cannot read the device 1-2; trying again every 5 seconds\n");
  EXPECT_THAT(machine.Looks(), ElementsAre(1500, 6500, 11500, 11500));
  EXPECT_THAT(times, ElementsAre(11500));
}

TEST_F(WatcherTest, FailsWhereTheLastLookFails) {
  machine.failure = "cannot read the device 1-2";
  testing::internal::CaptureStderr();
  EXPECT_FALSE(Follow({.timeout = 100ms}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "usbinfo: cannot read the device 1-2\n");
}

TEST_F(WatcherTest, PrintsWhatDiffPrintsAndWhatElseHappened) {
  machine.Plug(1000ms, "1-2", kStick);
  machine.Plug(1000ms, "1-3", {3, {"Mouse"}});
  machine.Unplug(1100ms, "1-2");
  machine.Lose(1200ms);
  EXPECT_TRUE(Follow());
  EXPECT_EQ(texts.at(0),
            "\"testhost\" (2026-11-21 12:00:00 UTC) -> \"testhost\" (2026-11-21 12:00:00 UTC)\n"
            "+ 1-3: device 1234:5678 \"Mouse\"\n"
            "1 added\n"
            "* 1-2: mass storage 0781:5581 came and went\n"
            "! events were lost: more devices may have come and gone\n");
}

TEST_F(WatcherTest, ReportsADeviceThatIsNotAllowedAtTheStartAndWhenItComesOrChanges) {
  const char* const rules = "allow 1d6b:*\nblock serial \"S1\"\nallow name \"Mouse\"\n";
  const std::string byRule =
      "0781:5581 \"Stick\", serial \"S1\": blocked by rules.conf:2: block serial \"S1\"\n";
  machine.plugged["1-2"] = kStick;
  machine.Plug(1000ms, "1-3", {3, {"Mouse"}});
  machine.Do(3000ms, [this] { machine.plugged["1-3"].model.name = "Rat"; });
  machine.Send(3000ms, {.name = "1-3"});
  machine.Unplug(5000ms, "1-2");
  machine.Plug(7000ms, "1-2", kStick);
  EXPECT_TRUE(FollowWithPolicy(rules));
  EXPECT_THAT(times, ElementsAre(0, 1500, 3500, 5500, 7500));
  EXPECT_THAT(texts, ElementsAre(HasSubstr("\n! 1-2: device " + byRule), Not(HasSubstr("!")),
                                 HasSubstr("\n! 1-3: device 1234:5678 \"Rat\": blocked, no rule matches\n"),
                                 Not(HasSubstr("!")), HasSubstr("\n! 1-2: device " + byRule)));
  EXPECT_EQ(lines.at(0)["difference"]["added"], json::array());
  EXPECT_EQ(lines.at(0)["notAllowed"], json::parse(R"([{
    "device": "Bus 01  Device   2", "name": "1-2", "id": "0781:5581", "product": "Stick", "serial": "S1", "kinds": [],
    "decision": "block", "rule": {"line": 2, "text": "block serial \"S1\""},
    "reason": "blocked by rules.conf:2: block serial \"S1\""}])"));
  EXPECT_EQ(lines.at(1)["notAllowed"], json::array());
}

TEST_F(WatcherTest, ReportsADeviceThatARuleCannotDecideAboutAndGoesOn) {
  machine.plugged["1-2"] = kStick;
  machine.Plug(1000ms, "1-3", {3, {"Mouse"}});
  EXPECT_TRUE(FollowWithPolicy("allow 1d6b:*\nallow serial \"S1\" hash \"x\"\nallow\n"));
  const std::string reason = "rules.conf:2: the rule needs hash of 1-2, which is not known: ";
  EXPECT_THAT(texts.at(0), HasSubstr("\n! 1-2: device 0781:5581 \"Stick\", serial \"S1\": " + reason));
  EXPECT_EQ(lines.at(0)["notAllowed"].size(), 1U);
  EXPECT_EQ(lines.at(0)["notAllowed"][0]["decision"], nullptr);
  EXPECT_EQ(lines.at(0)["notAllowed"][0]["rule"], nullptr);
  EXPECT_THAT(lines.at(0)["notAllowed"][0]["reason"].get<std::string>(), StartsWith(reason));
  EXPECT_THAT(times, ElementsAre(0, 1500));
  EXPECT_EQ(lines.at(1)["notAllowed"], json::array());
}

TEST_F(WatcherTest, WritesOneLineOfJsonWithTimeMachineAndTheDifference) {
  machine.Plug(2000ms, "1-2", kStick);
  EXPECT_TRUE(Follow());
  const json& line = lines.at(0);
  EXPECT_EQ(line["schema"], "usbinfo.watch/1");
  EXPECT_EQ(line["time"], "2026-11-22T12:00:02Z");
  EXPECT_EQ(line["machine"], "c0ffee");
  EXPECT_EQ(line["difference"]["schema"], "usbinfo.diff/2");
  EXPECT_EQ(line["difference"]["added"][0]["place"], "1-2");
  EXPECT_EQ(line["eventsLost"], false);
  EXPECT_EQ(line["notAllowed"], nullptr);
}

}  // namespace
}  // namespace usbinfo_test
