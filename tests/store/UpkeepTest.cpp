// Forgetting, renaming, and versions of the schema.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <csignal>
#include <map>

#include "cli/text/UserError.h"
#include "store/HostUpkeep.h"
#include "store/Schema.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/store/support/Diffs.h"
#include "tests/store/support/Mutation.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"
#include "tests/support/ForkedChild.h"

using ::testing::HasSubstr;

namespace usbinfo_test {

namespace {

using UpkeepTest = StoreTest;

Json OfHost(const std::string& host, store::Seconds collected) {
  Json document = Desktop(collected);
  document["system"]["name"] = host;
  return document;
}

std::string UserErrorOf(const std::function<void()>& action) {
  try {
    action();
    return "";
  } catch (const cli::UserError& error) {
    return error.what();
  }
}

/// A later version of the program, which keeps a note of each host.
const store::SchemaDefinition& LaterSchema() {
  static const store::SchemaDefinition schema = {
      3,
      "CREATE TABLE never (made INTEGER);\n",
      {{2, "ALTER TABLE host ADD COLUMN hint TEXT;\nUPDATE host SET hint = note || ', too';\n"},
       {1,
        "-- A comment.\nALTER TABLE host ADD COLUMN note TEXT;\nUPDATE host SET note = 'from {version}';\n"
        "CREATE TABLE noted (\n  id {identity}\n);\n"}}};
  return schema;
}

}  // namespace

TEST_P(UpkeepTest, ForgettingAHostDeletesAllOfItAndNothingElse) {
  Load(OfHost("kept", kNow - 1));
  const auto before = Content();
  Load(OfHost("gone", kNow - 1));
  Load(OfHost("gone", kNow));
  Load(OfHost("gone", kNow - 2));
  EXPECT_NE(RefusalOf(OfHost("gone", kNow + kDay).dump()), "");
  EXPECT_EQ(store::Forget(Db(), "gone"), 2u);
  EXPECT_EQ(Content(), before);
  EXPECT_EQ(store::Forget(Db(), "gone"), std::nullopt);
}

TEST_P(UpkeepTest, ARenamedHostKeepsItsHistoryAndGoesOnUnderItsNewName) {
  Load(OfHost("old", kNow - kDay));
  Load(OfHost("other", kNow));
  EXPECT_THAT(UserErrorOf([&] { store::Rename(Db(), "old", "other"); }),
              HasSubstr("has a host other already"));
  EXPECT_TRUE(store::Rename(Db(), "old", "new"));
  EXPECT_FALSE(store::Rename(Db(), "old", "newer"));
  Load(OfHost("new", kNow));
  EXPECT_EQ(Shown("new", kNow - 1), Printed(OfHost("old", kNow - kDay)));
  EXPECT_EQ(Shown("new", kNow), Printed(OfHost("new", kNow)));
}

TEST_P(UpkeepTest, APrunedStoreHasNothingOfTimesBeforeItsFirstReport) {
  const std::string held =
      "SELECT COUNT(*) FROM device_history WHERE (until IS NULL OR until > {0}) AND since <= {0}";
  const auto devicesAt = [&](store::Seconds time) { return Count(fmt::format(fmt::runtime(held), time)); };
  Json changed = OfHost("a", kNow - 2 * kDay);
  changed["classes"]["KALDO_USBDevice"][0]["SubclassCode"] = 9;
  Load(OfHost("a", kNow - 3 * kDay));
  Load(changed);
  Load(OfHost("a", kNow - kDay));
  const std::int64_t devices = devicesAt(kNow);
  EXPECT_GT(devices, 1);
  EXPECT_EQ(devicesAt(kNow - 3 * kDay), devices);
  store::Prune(Db(), kNow - 2 * kDay);
  EXPECT_EQ(devicesAt(kNow - 2 * kDay - 1), 0);
  EXPECT_EQ(devicesAt(kNow - 2 * kDay), devices);
  EXPECT_EQ(devicesAt(kNow), devices);
}

TEST_P(UpkeepTest, MigratingBringsAStoreWithDataFromVersionToVersion) {
  Mutation mutation(5);
  Json document = Desktop(kNow);
  std::map<store::Seconds, std::string> shown;
  for (store::Seconds time = kNow - 20; time < kNow; ++time) {
    mutation.Apply(document);
    document["system"]["name"] = "a";
    document["origin"]["collected"] = store::FormatTime(time);
    Load(document);
    shown[time] = Printed(document);
  }
  Load(OfHost("a", kNow - kDay));
  Load(OfHost("b", kNow));
  const Diffs changes = StoredDiffs(Db(), "a");
  store::Migrate(Db(), LaterSchema());
  EXPECT_EQ(store::FindVersion(Db()), 3);
  EXPECT_EQ(Select("SELECT name, note, hint FROM host ORDER BY name", 3),
            (std::vector<std::string>{"a|from 2|from 2, too", "b|from 2|from 2, too"}));
  EXPECT_EQ(Count("SELECT COUNT(*) FROM noted"), 0);
  for (const auto& [time, text] : shown) EXPECT_EQ(Shown("a", time), text) << time;
  EXPECT_EQ(StoredDiffs(Db(), "a"), changes);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM late"), 1);
  EXPECT_THAT(UserErrorOf([&] { Connect(); }),
              HasSubstr("has version 3 of the schema, and this program uses 1"));
  EXPECT_THAT(UserErrorOf([&] { store::Migrate(Db()); }), HasSubstr("update usbinfo-store on this machine"));
}

TEST_P(UpkeepTest, AMigrationThatIsKilledAtAnyStatementHasBeenOrNot) {
  Load(OfHost("a", kNow));
  const std::vector<std::string> before = Content();
  for (std::size_t killed = 1; store::FindVersion(Db()) == 1; ++killed) {
    ASSERT_LT(killed, 50u);
    ASSERT_EQ(Content(), before);
    ASSERT_EQ(EndOfChild(StartChild([&] {
                const auto database = Connect();
                WatchedDatabase watched(*database, [&](std::size_t number, WatchedDatabase::Moment moment) {
                  if (number == killed && moment == WatchedDatabase::Moment::kAfter) ::raise(SIGKILL);
                });
                store::Migrate(watched, LaterSchema());
                return 0;
              })),
              -SIGKILL);
  }
  EXPECT_EQ(store::FindVersion(Db()), 3);
  EXPECT_EQ(Select("SELECT name, note, hint FROM host", 3), std::vector<std::string>{"a|from 2|from 2, too"});
  EXPECT_EQ(Shown("a", kNow), Printed(OfHost("a", kNow)));
}

TEST_P(UpkeepTest, AMigrationThatFailsAtAnyStatementLeavesTheStoreAsItWas) {
  Load(OfHost("a", kNow));
  const std::vector<std::string> before = Content();
  std::size_t failing = 1;
  for (bool hasFailed = true; hasFailed; ++failing) {
    ASSERT_LT(failing, 50u);
    WatchedDatabase watched(Db(), [&](std::size_t number, WatchedDatabase::Moment moment) {
      if (number == failing && moment == WatchedDatabase::Moment::kBefore)
        throw store::DatabaseError("the test's failure");
    });
    try {
      store::Migrate(watched, LaterSchema());
      hasFailed = false;
    } catch (const store::DatabaseError&) {
      ASSERT_EQ(Content(), before) << failing;
      ASSERT_EQ(store::FindVersion(Db()), 1);
    }
  }
  EXPECT_GT(failing, 8u);
  EXPECT_EQ(store::FindVersion(Db()), 3);
}

TEST_P(UpkeepTest, AStoreFromWhichThereIsNoWayIsRefusedByASentence) {
  Db().Execute("UPDATE meta SET schema_version = 0", {});
  EXPECT_THAT(UserErrorOf([&] { Connect(); }), HasSubstr("this program uses 1; run usbinfo-store migrate"));
  EXPECT_THAT(UserErrorOf([&] { store::Migrate(Db()); }),
              HasSubstr("has version 0 of the schema, which this program cannot bring to version 1"));
  EXPECT_EQ(store::FindVersion(Db()), 0);
}

TEST_P(UpkeepTest, AStoreOfALaterVersionIsNotUsedAndNotChanged) {
  Load(OfHost("a", kNow));
  Db().Execute("UPDATE meta SET schema_version = 2", {});
  const std::vector<std::string> before = Content();
  const std::vector<std::vector<std::string>> commands = {{"hosts"},
                                                          {"load"},
                                                          {"find"},
                                                          {"changes"},
                                                          {"show", "a"},
                                                          {"forget", "a"},
                                                          {"rename", "a", "b"},
                                                          {"load", "--confirm"},
                                                          {"prune", "--keep", "0s"},
                                                          {"migrate"}};
  for (const std::vector<std::string>& command : commands) {
    SCOPED_TRACE(command.front());
    const CommandResult result =
        Command(command).Set("USBINFO_STORE_DB", Name()).Input(OfHost("a", kNow + 1).dump() + "\n").Run();
    EXPECT_THAT(result.errors,
                ::testing::MatchesRegex(
                    "usbinfo-store: the store [^ ]* has version 2 of the schema, and this program "
                    "uses 1; update usbinfo-store on this machine\n"));
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, 2);
  }
  EXPECT_EQ(Content(), before);
}

TEST_P(UpkeepTest, TheViewsSayWhatTheLastReportsAndEarlierOnesHave) {
  Load(Desktop(kNow - kDay));
  Json next = Desktop(kNow);
  next["kernel"]["devices"].erase(next["kernel"]["devices"].begin(), next["kernel"]["devices"].end());
  next["classes"]["KALDO_USBDevice"].erase(next["classes"]["KALDO_USBDevice"].begin());
  Load(next);
  const std::string count = "SELECT COUNT(*) FROM ";
  EXPECT_EQ(Count(count + "controller"), 4);
  EXPECT_EQ(Count(count + "hub"), 5);
  EXPECT_EQ(Count(count + "hub WHERE is_root = 1"), 4);
  EXPECT_EQ(Count(count + "device"), 5);
  EXPECT_EQ(
      Count(count + "device_history WHERE since <= 1795219200 AND (until IS NULL OR until > 1795219200)"), 6);
  EXPECT_EQ(Count(count + "port WHERE state = 'used'"), 7);
  EXPECT_EQ(
      Count(count +
            "connection JOIN port ON port.identifier = connection.port AND port.host = connection.host"),
      Count(count + "connection"));
  EXPECT_EQ(Count(count + "change WHERE kind = 'removed'"), 1);
  EXPECT_EQ(Count(count + "device WHERE place IS NOT NULL OR kinds IS NOT NULL"), 0);
  EXPECT_EQ(Select("SELECT place, kinds, vendor_id, product_id, serial, drivers FROM device_history "
                   "WHERE serial = 'STICK01' AND place IS NOT NULL",
                   6),
            std::vector<std::string>{"2-1|mass storage|46f4|0001|STICK01|usb-storage"});
}

FOR_BOTH_DATABASES(UpkeepTest);

}  // namespace usbinfo_test
