// The stored changes are those that the comparison of neighbouring reports finds.
#include <gmock/gmock.h>

#include "store/ChangeList.h"
#include "store/HostUpkeep.h"
#include "tests/store/support/Diffs.h"
#include "tests/store/support/Mutation.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace usbinfo_test {

namespace {

using ChangesTest = StoreTest;

/// The desktop, whose first device has this serial number.
Json WithSerial(store::Seconds collected, const std::string& serial) {
  Json document = Desktop(collected);
  document["classes"]["KALDO_USBDevice"][0]["SerialNumber"] = serial;
  document["kernel"] = nullptr;
  return document;
}

}  // namespace

TEST_P(ChangesTest, AreThoseOfEachReportAndTheNextInRandomHistories) {
  const unsigned histories = GetParam() == store::Dialect::kSqlite ? 4 : 2;
  for (unsigned seed = 1; seed <= histories; ++seed) {
    SCOPED_TRACE(seed);
    Mutation mutation(seed);
    const std::string host = "host" + std::to_string(seed);
    std::vector<std::string> documents;
    Json document = Desktop(kNow);
    store::Seconds time = kNow - 90 * kDay;
    for (int report = 0; report < 40; ++report) {
      for (int times = 0; times < 3; ++times) mutation.Apply(document);
      document["system"]["name"] = host;
      time += 1 + static_cast<store::Seconds>(mutation.Below(2 * kDay));
      document["origin"]["collected"] = store::FormatTime(time);
      ASSERT_NE(Load(document), store::Outcome::kLate);
      documents.push_back(document.dump());
      if (report % 8 == 0) {
        Json late = WithSerial(time - 1, "late");
        late["system"]["name"] = host;
        ASSERT_EQ(Load(late), store::Outcome::kLate);
        ASSERT_EQ(Load(document), store::Outcome::kKnown);
      }
    }
    const Diffs expected = DiffsOf(documents);
    ASSERT_GT(expected.documents.size(), 10u);
    EXPECT_EQ(StoredDiffs(Db(), host), expected);
  }
}

TEST_P(ChangesTest, AreNotLookedForInAnUnchangedReport) {
  Load(Desktop(kNow - 2));
  WatchedDatabase watched(Db());
  store::Loader loader(fClock, {});
  EXPECT_EQ(loader.Load(watched, {Desktop(kNow - 1).dump()}, "test"), std::nullopt);
  for (const std::string& statement : watched.Statements()) {
    EXPECT_EQ(statement.find("item"), std::string::npos) << statement;
  }
  Load(WithSerial(kNow, "new"));
  EXPECT_EQ(Select("SELECT DISTINCT previous, collected FROM change_history", 2),
            std::vector<std::string>{std::to_string(kNow - 1) + "|" + std::to_string(kNow)});
}

TEST_P(ChangesTest, AreInTheViewsForAllTimesAndForTheLastReport) {
  Load(WithSerial(kNow - 3, "a"));
  Load(WithSerial(kNow - 2, "b"));
  const std::string columns =
      " host, previous - 1795305600, collected - 1795305600, number, kind, class, "
      "place_before IS NULL, properties IS NULL, description ";
  const std::vector<std::string> rows = Select("SELECT" + columns + "FROM change ORDER BY number", 9);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_THAT(rows[0], HasSubstr("vm-desktop|-3|-2|1|removed|KALDO_USBDevice|"));
  EXPECT_THAT(rows[0], HasSubstr("serial \"a\""));
  EXPECT_THAT(rows[1], HasSubstr("vm-desktop|-3|-2|2|added|KALDO_USBDevice|"));
  EXPECT_THAT(rows[1], HasSubstr("serial \"b\""));
  Load(WithSerial(kNow - 1, "b"));
  EXPECT_THAT(Select("SELECT" + columns + "FROM change", 9), IsEmpty());
  EXPECT_EQ(Select("SELECT" + columns + "FROM change_history ORDER BY number", 9), rows);
}

TEST_P(ChangesTest, AreNotFoundBetweenReportsWhoseSerialNumbersDoNotCompare) {
  Load(WithSerial(kNow - 3, "a"));
  Json masked = WithSerial(kNow - 2, "0123");
  masked["origin"]["masked"] = {{"key", "0123"}};
  const store::LoadSettings accepting{.collected = {}, .permissions = {.newMask = true}};
  EXPECT_EQ(Load(masked, accepting), store::Outcome::kChanged);
  EXPECT_EQ(StoredDiffs(Db(), "vm-desktop"),
            (Diffs{"\"vm-desktop\" (2026-11-21 23:59:57 UTC) -> \"vm-desktop\" (2026-11-21 23:59:58 UTC)\n"
                   "! not compared: the serial numbers are masked in only one of them\n",
                   {"null"}}));
  EXPECT_THAT(store::RenderChangesCsv(store::ReadChanges(Db(), "", 0)), HasSubstr("not compared"));
}

TEST_P(ChangesTest, OfAMachineThatReplacesAnotherSaySo) {
  Json first = Desktop(kNow - 2);
  first["origin"]["machine"] = "aa";
  Load(first);
  Json second = Desktop(kNow - 1);
  second["origin"]["machine"] = "bb";
  EXPECT_EQ(Load(second, {.collected = {}, .permissions = {.newMachine = true}}), store::Outcome::kChanged);
  EXPECT_EQ(StoredDiffs(Db(), "vm-desktop").text,
            "\"vm-desktop\" (2026-11-21 23:59:58 UTC) -> \"vm-desktop\" (2026-11-21 23:59:59 UTC)\n"
            "! another machine than before\n");
}

TEST_P(ChangesTest, GoWithTheirHostAndWithTheReportsThatShowThem) {
  for (const int report : {4, 3, 2}) Load(WithSerial(kNow - report, std::to_string(report)));
  const auto times = [&] {
    return Select("SELECT DISTINCT collected - 1795305600 FROM change_history ORDER BY 1", 1);
  };
  EXPECT_THAT(times(), ElementsAre("-3", "-2"));
  store::Rename(Db(), "vm-desktop", "renamed");
  EXPECT_THAT(StoredDiffs(Db(), "renamed").text,
              HasSubstr("\"renamed\" (2026-11-21 23:59:56 UTC) -> \"renamed\""));
  EXPECT_THAT(StoredDiffs(Db(), "renamed").documents[0], HasSubstr("\"system\":\"vm-desktop\""));
  store::Prune(Db(), kNow - 3);
  EXPECT_THAT(times(), ElementsAre("-2"));
  store::Forget(Db(), "renamed");
  EXPECT_THAT(times(), IsEmpty());
  EXPECT_EQ(Count("SELECT COUNT(*) FROM comparison") + Count("SELECT COUNT(*) FROM difference"), 0);
}

FOR_BOTH_DATABASES(ChangesTest);

}  // namespace usbinfo_test
