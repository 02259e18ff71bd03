// Whatever fails at whichever statement: the store is afterwards as before or as after.
#include <gmock/gmock.h>

#include <csignal>
#include <map>
#include <set>

#include "store/HostUpkeep.h"
#include "store/Loader.h"
#include "store/NodeTable.h"
#include "store/OpenStore.h"
#include "tests/store/support/Diffs.h"
#include "tests/store/support/Mutation.h"
#include "tests/store/support/PostgresServer.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"
#include "tests/support/ForkedChild.h"

namespace usbinfo_test {

namespace {

/// More than any action has.
constexpr std::size_t kMostStatements = 100;

/// Something that changes the store.
struct Action {
  const char* name;
  std::function<void(store::Database&)> run;
  /// Doing it once more changes nothing.
  bool isRepeatable = false;
};

Json Named(const std::string& host, Json document) {
  document["system"]["name"] = host;
  return document;
}

}  // namespace

class FaultTest : public StoreTest {
 protected:
  using Moment = WatchedDatabase::Moment;

  /// A store with a report.
  void SetUp() override {
    StoreTest::SetUp();
    if (!IsSkipped()) Load(Desktop(kNow - kDay));
  }

  /// One that removes, adds and changes items.
  static Json Changed(store::Seconds collected) {
    Json document = Desktop(collected);
    document["origin"]["machine"] = "a machine";
    document["classes"]["KALDO_USBDevice"].erase(1);
    document["classes"]["KALDO_USBDevice"][0]["SerialNumber"] = "another";
    document["classes"]["KALDO_USBPort"].push_back(Json(document["classes"]["KALDO_USBPort"][0]));
    return document;
  }

  Action Loading(const char* name, const std::string& document, bool isRepeatable = true) const {
    return {name,
            [this, document](store::Database& database) {
              store::Loader(fClock, {}).Load(database, {document}, "test");
            },
            isRepeatable};
  }

  /// Everything that can be done to a store, each of which changes it, in an order in which it can be done.
  std::vector<Action> Actions() const {
    Json ofAnotherMachine = Changed(kNow + 2);
    ofAnotherMachine["origin"]["machine"] = "another machine";
    return {Loading("a first report", Named("another", Desktop(kNow - kHour)).dump()),
            Loading("a changed report", Changed(kNow).dump()),
            Loading("an unchanged report", Changed(kNow + 1).dump()),
            Loading("a late report", Desktop(kNow - 2 * kDay).dump()),
            Loading("a text that is no report", "{", false),
            Loading("a report of another machine", ofAnotherMachine.dump(), false),
            {"collecting",
             [](store::Database& database) { store::RecordFailure(database, "node", "why", kNow); }, true},
            {"renaming", [](store::Database& database) { store::Rename(database, "vm-desktop", "renamed"); },
             false},
            {"pruning", [](store::Database& database) { store::Prune(database, kNow - 1); }, true},
            {"forgetting", [](store::Database& database) { store::Forget(database, "renamed"); }, true}};
  }
};

TEST_P(FaultTest, AFailureAtAnyStatementLeavesTheStoreAsBefore) {
  for (const Action& action : Actions()) {
    SCOPED_TRACE(action.name);
    const std::vector<std::string> before = Content();
    bool hasFailed = true;
    for (std::size_t failing = 1; hasFailed; ++failing) {
      ASSERT_LT(failing, kMostStatements);
      hasFailed = false;
      const WatchedDatabase* statements = nullptr;
      WatchedDatabase watched(Db(), [&](std::size_t number, Moment moment) {
        // A failure of ROLLBACK is that of the connection, which ends the transaction, too.
        if (hasFailed || number < failing || moment == Moment::kAfter ||
            statements->Statements().back() == "ROLLBACK")
          return;
        hasFailed = true;
        throw store::DatabaseError("the test's failure");
      });
      statements = &watched;
      try {
        action.run(watched);
        ASSERT_FALSE(hasFailed);
      } catch (const store::DatabaseError&) {
        ASSERT_EQ(Content(), before) << failing;
      }
    }
    EXPECT_NE(Content(), before);
  }
}

TEST_P(FaultTest, AKillAtAnyStatementLeavesTheStoreAsBeforeOrAsAfter) {
  for (const Action& action : Actions()) {
    SCOPED_TRACE(action.name);
    const std::vector<std::string> before = Content();
    std::vector<std::string> content = before;
    for (std::size_t killed = 1; content == before; ++killed) {
      ASSERT_LT(killed, kMostStatements);
      ASSERT_EQ(EndOfChild(StartChild([&] {
                  const auto database = Connect();
                  WatchedDatabase watched(*database, [&](std::size_t number, Moment moment) {
                    if (number == killed && moment == Moment::kAfter) ::raise(SIGKILL);
                  });
                  action.run(watched);
                  return 0;
                })),
                -SIGKILL);
      content = Content();
    }
    if (!action.isRepeatable) continue;
    action.run(Db());
    EXPECT_EQ(Content(), content);
  }
}

TEST_P(FaultTest, AReportThatWasLoadedAfterFailuresIsWhole) {
  for (std::size_t failing = 1; failing < 10; ++failing) {
    WatchedDatabase watched(Db(), [&](std::size_t number, Moment) {
      if (number == failing) throw store::DatabaseError("the test's failure");
    });
    store::Loader loader(fClock, {});
    EXPECT_THROW(loader.Load(watched, {Changed(kNow).dump()}, "test"), store::DatabaseError);
    EXPECT_EQ(loader.Counts().Total(), 0u);
  }
  EXPECT_EQ(Load(Changed(kNow)), store::Outcome::kChanged);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(Changed(kNow)));
}

TEST_P(FaultTest, TwoLoadersWithTheSameHostLoseNothingAndMixNothing) {
  constexpr int kReports = 40;
  Mutation mutation(11);
  std::vector<Json> documents;
  Json document = Desktop(kNow);
  for (int report = 0; report < kReports; ++report) {
    mutation.Apply(document);
    // Reports of the same second come, too, with equal content and with other.
    document["origin"]["collected"] = store::FormatTime(kNow - kHour + report - (report % 7 == 1 ? 1 : 0));
    documents.push_back(Named("shared", document));
  }
  std::vector<pid_t> children;
  for (const int own : {0, 1}) {
    children.push_back(StartChild([&] {
      const auto database = Connect();
      store::Loader loader(fClock, {});
      for (int report = 0; report < kReports; ++report) {
        const bool isOfBoth = report % 5 == 0;
        if (report % 2 != own && !isOfBoth) continue;
        if (loader.Load(*database, {documents[static_cast<std::size_t>(report)].dump()}, "test")) return 1;
      }
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(EndOfChild(child), 0);

  const std::vector<std::string> late = Select("SELECT document FROM late", 1);
  std::map<std::string, std::string> stored;
  std::set<std::string> aside(late.begin(), late.end());
  for (const Json& each : documents) {
    const std::string text = each["origin"]["collected"];
    const std::string shown = Shown("shared", *store::ParseTime(text));
    if (shown == Printed(each)) {
      stored[text] = each.dump();
    } else {
      EXPECT_EQ(aside.count(Printed(each)), 1u) << text;
    }
  }
  EXPECT_EQ(aside.size(), late.size());
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report JOIN host ON host.id = host_id WHERE name = 'shared'"),
            static_cast<std::int64_t>(stored.size()));
  std::vector<std::string> history;
  for (const auto& [time, text] : stored) history.push_back(text);
  EXPECT_GT(history.size(), 10u);
  EXPECT_EQ(StoredDiffs(Db(), "shared"), DiffsOf(history));
}

TEST_P(FaultTest, UpkeepWhileReportsAreLoadedBreaksNoReport) {
  constexpr int kRounds = 30;
  const auto loading = [&] {
    const auto database = Connect();
    store::Loader loader(fClock, {});
    for (int round = 0; round < kRounds; ++round) {
      for (const char* const host : {"first", "second"}) {
        const Json document = round % 3 == 0 ? Desktop(kNow - kHour + round) : Changed(kNow - kHour + round);
        if (loader.Load(*database, {Named(host, document).dump()}, "test")) return 1;
      }
    }
    return 0;
  };
  const auto keeping = [&] {
    const auto database = Connect();
    for (int round = 0; round < kRounds; ++round) {
      store::Rename(*database, "first", "renamed " + std::to_string(round));
      store::Prune(*database, kNow - kHour + round / 2);
      store::Forget(*database, "second");
    }
    return 0;
  };
  const std::vector<pid_t> children = {StartChild(loading), StartChild(keeping)};
  for (const pid_t child : children) EXPECT_EQ(EndOfChild(child), 0);

  int reports = 0;
  for (const std::string& row :
       Select("SELECT host.name, collected FROM report JOIN host ON host.id = host_id", 2)) {
    const std::size_t bar = row.find('|');
    const store::Seconds collected = std::stoll(row.substr(bar + 1));
    const std::string shown = Shown(row.substr(0, bar), collected);
    EXPECT_THAT(shown, ::testing::HasSubstr(store::FormatTime(collected))) << row;
    ++reports;
  }
  EXPECT_GT(reports, 1);
}

TEST_P(FaultTest, TwoProgramsThatMakeTheSameStoreTakeTurns) {
  const TemporaryFolder folder;
  const bool isSqlite = GetParam() == store::Dialect::kSqlite;
  const std::string name = isSqlite ? folder.File("new.db") : PostgresServer::Shared()->NewUrl();
  std::vector<pid_t> children;
  for (int child = 0; child < 4; ++child) {
    children.push_back(StartChild([&] {
      store::OpenStore(store::FindDatabase(name), store::Access::kCreating);
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(EndOfChild(child), 0);
}

FOR_BOTH_DATABASES(FaultTest);

}  // namespace usbinfo_test
