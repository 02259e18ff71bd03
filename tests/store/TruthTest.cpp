// Which reports are taken, put aside and refused.
#include <gmock/gmock.h>

#include "store/HostUpkeep.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/store/support/StoreTest.h"

using store::Outcome;
using ::testing::HasSubstr;

namespace usbinfo_test {

namespace {

Json Masked(store::Seconds collected, const Json& key) {
  Json document = Desktop(collected);
  document["origin"]["masked"] = {{"key", key}};
  return document;
}

Json OfMachine(store::Seconds collected, const std::string& machine) {
  Json document = Desktop(collected);
  document["origin"]["machine"] = machine;
  return document;
}

Json Renamed(Json document) {
  document["classes"]["KALDO_USBDevice"][0]["Description"] = "Another Stick";
  return document;
}

}  // namespace

class TruthTest : public StoreTest {
 protected:
  /// The rows of a list that the program prints.
  Json Listed(std::vector<std::string> arguments, const char* list) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    return Json::parse(Command(std::move(arguments)).Set("USBINFO_STORE_DB", Name()).Run().output)[list];
  }

  Json Hosts() const { return Listed({"hosts"}, "hosts"); }
};

TEST_P(TruthTest, TheSameReportTwiceChangesNothing) {
  EXPECT_EQ(Load(Desktop(kNow - kDay)), Outcome::kChanged);
  EXPECT_EQ(Load(Renamed(Desktop(kNow))), Outcome::kChanged);
  const auto content = Content();
  EXPECT_EQ(Load(Desktop(kNow - kDay)), Outcome::kKnown);
  EXPECT_EQ(Load(Renamed(Desktop(kNow))), Outcome::kKnown);
  EXPECT_EQ(Content(), content);
}

TEST_P(TruthTest, AReportOlderThanTheLastIsKeptAsideOnceAndChangesNothing) {
  Load(Desktop(kNow));
  const Json late = Renamed(Desktop(kNow - kDay));
  EXPECT_EQ(Load(late), Outcome::kLate);
  EXPECT_EQ(Load(late), Outcome::kKnown);
  EXPECT_EQ(Load(Renamed(Desktop(kNow))), Outcome::kLate);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM late"), 2);
  EXPECT_EQ(Select("SELECT document FROM late ORDER BY collected", 1).front(), Printed(late));
  EXPECT_EQ(Shown("vm-desktop", kNow - kDay), "");
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(Desktop(kNow)));
}

TEST_P(TruthTest, AReportOfTheFutureIsRefused) {
  EXPECT_EQ(Load(Desktop(kNow + kHour)), Outcome::kChanged);
  EXPECT_THAT(RefusalOf(Desktop(kNow + kHour + 1).dump()),
              HasSubstr("2026-11-22T01:00:01Z, which is more than an hour after now, 2026-11-22T00:00:00Z"));
  fClock.Set(kNow + 1);
  EXPECT_EQ(Load(Desktop(kNow + kHour + 1)), Outcome::kUnchanged);
}

TEST_P(TruthTest, AnotherMachineOfTheSameNameIsRefusedUntilItIsSaidToReplaceTheFirst) {
  EXPECT_EQ(Load(Desktop(kNow - 5)), Outcome::kChanged);
  EXPECT_EQ(Load(OfMachine(kNow - 4, "aa")), Outcome::kChanged);
  EXPECT_THAT(RefusalOf(OfMachine(kNow - 3, "bb").dump()),
              HasSubstr("another machine reports as vm-desktop"));
  EXPECT_THAT(RefusalOf(OfMachine(kNow - 6, "bb").dump()),
              HasSubstr("another machine reports as vm-desktop"));
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report") + Count("SELECT COUNT(*) FROM late"), 2);
  EXPECT_EQ(Load(OfMachine(kNow - 2, "bb"), {.collected = {}, .permissions = {.newMachine = true}}),
            Outcome::kChanged);
  EXPECT_EQ(Load(OfMachine(kNow - 1, "bb")), Outcome::kUnchanged);
}

TEST_P(TruthTest, AHostHasOneMaskUntilANewOneIsAccepted) {
  EXPECT_EQ(Load(Masked(kNow - 9, "0123")), Outcome::kChanged);
  EXPECT_EQ(Load(Masked(kNow - 8, "0123")), Outcome::kUnchanged);
  EXPECT_THAT(
      RefusalOf(Masked(kNow - 7, "4567").dump()),
      HasSubstr(
          "masked with the key 4567, and those of vm-desktop in the store are masked with the key 0123"));
  EXPECT_THAT(RefusalOf(Desktop(kNow - 7).dump()), HasSubstr("are not masked, and those"));
  EXPECT_THAT(RefusalOf(Desktop(kNow - 10).dump()), HasSubstr("are not masked, and those"));
  EXPECT_EQ(Count("SELECT COUNT(*) FROM late"), 0);
  const store::LoadSettings accepting{.collected = {}, .permissions = {.newMask = true}};
  EXPECT_EQ(Load(Masked(kNow - 6, nullptr), accepting), Outcome::kChanged);
  EXPECT_THAT(RefusalOf(Masked(kNow - 5, nullptr).dump()), HasSubstr("masked with a random key"));
  EXPECT_EQ(Load(Desktop(kNow - 4), accepting), Outcome::kChanged);
  EXPECT_EQ(Load(Desktop(kNow - 3)), Outcome::kUnchanged);
}

TEST_P(TruthTest, WhatIsNoReportOfAWholeMachineAtATimeIsRefusedAndRecorded) {
  Json partial = Desktop(kNow);
  partial["origin"]["selection"] = {
      {"classes", Json::array()}, {"ids", {"46f4:"}}, {"places", Json::array()}};
  Json timeless = Desktop(kNow);
  timeless["origin"]["collected"] = nullptr;
  Json impossible = Desktop(kNow);
  impossible["origin"]["collected"] = "2026-02-30T00:00:00Z";
  Json nameless = Desktop(kNow);
  nameless["system"]["name"] = "";

  EXPECT_THAT(RefusalOf(partial.dump()), HasSubstr("only a part of an inventory"));
  EXPECT_THAT(RefusalOf(timeless.dump()), HasSubstr("say it with --collected"));
  EXPECT_THAT(RefusalOf(impossible.dump()), HasSubstr("there is no time \"2026-02-30T00:00:00Z\""));
  EXPECT_THAT(RefusalOf(nameless.dump()), HasSubstr("does not name its system"));
  EXPECT_THAT(RefusalOf("{\"schema\": \"usb\xFF\x01"),
              HasSubstr("test holds no inventory: line 1, column 16"));
  EXPECT_THAT(RefusalOf("{\"schema\": \"usb\xFF\x01"), HasSubstr("not valid JSON"));

  EXPECT_EQ(Count("SELECT COUNT(*) FROM host"), 0);
  EXPECT_EQ(Select("SELECT times, head, source FROM refused WHERE times > 1", 3),
            std::vector<std::string>{"2|{\"schema\": \"usb\\xff\\x01|test"});
  EXPECT_EQ(Count("SELECT COUNT(*) FROM refused WHERE times = 1"), 4);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM refused WHERE host = 'vm-desktop'"), 3);
  EXPECT_EQ(Load(timeless, {.collected = kNow, .permissions = {}}), Outcome::kChanged);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(timeless));
}

TEST_P(TruthTest, ASuspectInventoryIsStoredAndFlagged) {
  Json suspect = Desktop(kNow);
  suspect["kernel"]["devices"].back()["product"] = "Another Stick";
  suspect["origin"]["findings"] = {
      {{"code", "two-t-lines"}, {"lines", {17}}, {"device", "Bus 01  Device   9"}}};
  Load(Desktop(kNow - 1));
  EXPECT_EQ(Load(suspect), Outcome::kChanged);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(suspect));
  EXPECT_EQ(Hosts()[0]["suspect"], 1);
  EXPECT_EQ(Listed({"changes"}, "changes")[0]["remarks"],
            Json::array({"suspect: a device may have forged a part of a report"}));
}

TEST_P(TruthTest, WhatWasNotTakenIsCountedAndSaidInTheListOfHosts) {
  Load(OfMachine(kNow - kHour, "aa"));
  Load(Renamed(Desktop(kNow - 2 * kHour)));
  Load(Renamed(Desktop(kNow - 3 * kHour)));
  EXPECT_EQ(Hosts()[0]["late"], 2);
  EXPECT_EQ(Hosts()[0]["lastError"], nullptr);

  fClock.Set(kNow + 1);
  const std::string mixed = RefusalOf(OfMachine(kNow, "bb").dump());
  EXPECT_EQ(mixed,
            "another machine reports as vm-desktop: its id is bb, and that of vm-desktop in the store is aa; "
            "give one "
            "of them another name, or, if vm-desktop was replaced, load this once with --new-machine");
  EXPECT_EQ(Hosts()[0]["lastError"], mixed);
  fClock.Set(kNow + 2);
  const std::string ahead = RefusalOf(OfMachine(kNow + kDay, "aa").dump());
  EXPECT_EQ(Hosts()[0]["lastError"], ahead);
  EXPECT_EQ(Hosts()[0]["reports"], 1);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(OfMachine(kNow - kHour, "aa")));

  fClock.Set(kNow + 3);
  Load(OfMachine(kNow + 3, "aa"));
  EXPECT_EQ(Hosts()[0]["lastError"], nullptr);
}

TEST_P(TruthTest, AHostThatIsKnownOnlyByRefusedReportsIsListedAndCanBeForgotten) {
  const std::string ahead = RefusalOf(Desktop(kNow + kDay).dump());
  RefusalOf("no report");
  const Json hosts = Hosts();
  ASSERT_EQ(hosts.size(), 1u);
  EXPECT_EQ(hosts[0]["host"], "vm-desktop");
  EXPECT_EQ(hosts[0]["lastReport"], nullptr);
  EXPECT_EQ(hosts[0]["lastError"], ahead);
  EXPECT_EQ(store::Forget(Db(), "vm-desktop"), 0u);
  EXPECT_EQ(Listed({"hosts"}, "hosts").size(), 0u);
  EXPECT_EQ(store::Forget(Db(), "vm-desktop"), std::nullopt);
}

TEST_P(TruthTest, OneMaskIsNotTakenForAnother) {
  const std::vector<Json> origins = {Desktop(0), Masked(0, "0123"), Masked(0, "4567"), Masked(0, nullptr)};
  for (std::size_t first = 0; first < origins.size(); ++first) {
    for (std::size_t next = 0; next < origins.size(); ++next) {
      SCOPED_TRACE(std::to_string(first) + std::to_string(next));
      const auto at = [](Json document, store::Seconds collected) {
        for (Json& list : document["classes"]) list = Json::array();
        document["kernel"] = nullptr;
        document["origin"]["collected"] = store::FormatTime(collected);
        return document;
      };
      // Random keys differ each time.
      const bool isSame = first == next && next != 3;
      Load(at(origins[first], kNow - 2));
      EXPECT_EQ(RefusalOf(at(origins[next], kNow - 1).dump()).empty(), isSame);
      EXPECT_EQ(Count("SELECT COUNT(*) FROM report"), isSame ? 2 : 1);
      EXPECT_EQ(
          RefusalOf(at(origins[next], kNow).dump(), {.collected = {}, .permissions = {.newMask = true}}), "");
      // The new one is the host's from then on, and after it is forgotten, any can be.
      EXPECT_EQ(RefusalOf(at(origins[next], kNow + 1).dump()).empty(), next != 3);
      store::Forget(Db(), "vm-desktop");
    }
  }
}

FOR_BOTH_DATABASES(TruthTest);

}  // namespace usbinfo_test
