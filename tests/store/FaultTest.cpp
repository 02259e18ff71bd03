// Whatever fails at whichever statement of a load: the store is afterwards as before it or as after it.
#include <csignal>

#include "store/Loader.h"
#include "store/OpenStore.h"
#include "tests/store/support/PostgresServer.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"
#include "tests/support/ForkedChild.h"

namespace usbinfo_test {

namespace {

/// More than any load has.
constexpr std::size_t kMostStatements = 100;

}  // namespace

class FaultTest : public StoreTest {
 protected:
  using Moment = WatchedDatabase::Moment;

  /// A store with a report, and one to load that removes, adds and changes items.
  void SetUp() override {
    StoreTest::SetUp();
    if (IsSkipped()) return;
    Load(Desktop(kNow - kDay));
    fNext = Desktop(kNow);
    fNext["classes"]["KALDO_USBDevice"].erase(1);
    fNext["classes"]["KALDO_USBDevice"][0]["SerialNumber"] = "another";
    fNext["classes"]["KALDO_USBPort"].push_back(Json(fNext["classes"]["KALDO_USBPort"][0]));
    fBefore = Content();
  }

  Json fNext;
  std::vector<std::string> fBefore;
};

TEST_P(FaultTest, AFailureAtAnyStatementLeavesTheStoreAsBefore) {
  std::size_t failing = 1;
  for (bool hasFailed = true; hasFailed; ++failing) {
    ASSERT_LT(failing, kMostStatements);
    WatchedDatabase watched(Db(), [&](std::size_t number, Moment moment) {
      if (number == failing && moment == Moment::kBefore) throw store::DatabaseError("the test's failure");
    });
    store::Loader loader(fClock, {});
    try {
      loader.Load(watched, {fNext.dump()}, "test");
      hasFailed = false;
    } catch (const store::DatabaseError&) {
      ASSERT_EQ(Content(), fBefore) << failing;
      ASSERT_EQ(loader.Counts().Total(), 0u);
    }
  }
  EXPECT_GT(failing, 10u);
  EXPECT_NE(Content(), fBefore);
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(fNext));
}

TEST_P(FaultTest, AKillAtAnyStatementLeavesTheStoreAsBeforeOrAsAfter) {
  bool isAfter = false;
  for (std::size_t killed = 1; !isAfter; ++killed) {
    ASSERT_LT(killed, kMostStatements);
    for (const Moment place : {Moment::kBefore, Moment::kAfter}) {
      const int end = EndOfChild(StartChild([&] {
        const auto database = Connect();
        WatchedDatabase watched(*database, [&](std::size_t number, Moment moment) {
          if (number == killed && moment == place) ::raise(SIGKILL);
        });
        store::Loader(fClock, {}).Load(watched, {fNext.dump()}, "test");
        return 0;
      }));
      ASSERT_EQ(end, -SIGKILL);
      isAfter = Content() != fBefore;
      if (isAfter) break;
    }
  }
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(fNext));
  const std::vector<std::string> content = Content();
  EXPECT_EQ(Load(fNext), store::Outcome::kKnown);
  EXPECT_EQ(Content(), content);
}

TEST_P(FaultTest, TwoLoadersWithTheSameHostStoreEachReportOnce) {
  constexpr int kReports = 40;
  std::vector<pid_t> children;
  for (const int first : {0, 1}) {
    children.push_back(StartChild([&] {
      const auto database = Connect();
      store::Loader loader(fClock, {});
      for (int report = first; report < kReports; report += 2) {
        Json document = report % 4 < 2 ? fNext : Desktop(kNow);
        document["system"]["name"] = "shared";
        document["origin"]["collected"] = store::FormatTime(kNow - kHour + report);
        if (loader.Load(*database, {document.dump()}, "test")) return 1;
      }
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(EndOfChild(child), 0);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM host WHERE name = 'shared'"), 1);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report JOIN host ON host.id = host_id WHERE name = 'shared'") +
                Count("SELECT COUNT(*) FROM late"),
            kReports);
  const store::Seconds last = Count("SELECT MAX(collected) FROM report");
  EXPECT_EQ(last, kNow - kHour + kReports - 1);
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
