// Which reports are taken, put aside and refused.
#include <gmock/gmock.h>

#include "tests/store/support/StoreTest.h"

using store::Outcome;
using ::testing::HasSubstr;

namespace usbinfo_test {

namespace {

using TruthTest = StoreTest;

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
  EXPECT_EQ(Load(timeless, {.collected = kNow, .permissions = {}}), Outcome::kChanged);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(timeless));
}

TEST_P(TruthTest, ASuspectInventoryIsStoredAndFlagged) {
  Json suspect = Desktop(kNow);
  suspect["origin"]["findings"] = {
      {{"code", "two-t-lines"}, {"lines", {17}}, {"device", "Bus 01  Device   9"}}};
  Load(suspect);
  EXPECT_EQ(Count("SELECT findings FROM state"), 1);
}

FOR_BOTH_DATABASES(TruthTest);

}  // namespace usbinfo_test
