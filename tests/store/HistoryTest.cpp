// What is shown is what was loaded, at every time, to the byte.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include "store/HostUpkeep.h"
#include "tests/store/support/Mutation.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::StartsWith;

namespace usbinfo_test {

class HistoryTest : public StoreTest {
 protected:
  /// Loads texts that repeat each other, also earlier and later ones, masked ones, those of two machines of
  /// one name and of a renamed host. Gives what came of each, and all that is stored then. Where
  /// `forgetsTexts`, no text is known again.
  std::vector<std::string> LoadRepeatedTexts(bool forgetsTexts) {
    Mutation mutation(7);
    std::vector<std::string> results;
    for (int report = 0; report < 100; ++report) {
      store::Loader loader(fClock, {});
      const auto refusal = loader.Load(Db(), {RandomText(mutation, kNow - (100 - report) * kMinute)}, "test");
      const store::LoadCounts& counts = loader.Counts();
      results.push_back(fmt::format("{} {} {} {} {}: {}", counts.changed, counts.unchanged, counts.known,
                                    counts.late, loader.LastHost(), refusal.value_or("taken")));
      if (report == 70) store::Rename(Db(), "a", "b");
      if (forgetsTexts) Db().Execute("UPDATE state SET text_hash = NULL", {});
    }
    Db().Execute("UPDATE state SET text_hash = NULL", {});
    const std::vector<std::string> content = Content();
    results.insert(results.end(), content.begin(), content.end());
    for (const char* const host : {"a", "b", "masked"}) store::Forget(Db(), host);
    return results;
  }

 private:
  static std::string RandomText(Mutation& mutation, store::Seconds about) {
    const store::Seconds ahead = mutation.Below(20) == 0 ? 4 * kHour : 0;
    Json document = Desktop(about + ahead + static_cast<store::Seconds>(mutation.Below(3)) * kMinute);
    const bool isMasked = mutation.Below(5) == 0;
    document["system"]["name"] = isMasked && mutation.Below(2) == 0 ? "masked" : "a";
    if (mutation.Below(4) == 0) document["origin"]["program"] = "usbinfo 1.0.1";
    document["origin"]["machine"] = mutation.Below(10) == 0 ? "another one" : "this one";
    if (isMasked) document["origin"]["masked"] = {{"key", nullptr}};
    if (mutation.Below(10) == 0) document["collected"] = document["origin"]["collected"];
    return document.dump();
  }
};

TEST_P(HistoryTest, EveryCapturedMachineIsShownByteForByte) {
  std::map<store::Seconds, std::string> loaded;
  store::Seconds collected = kNow - kDay;
  for (const fs::directory_entry& file : fs::directory_iterator(TEST_DATA_DIR "/expected")) {
    if (file.path().extension() != ".json") continue;
    const std::string text = SourceFile("tests/data/expected/" + file.path().filename().string());
    collected += kMinute;
    EXPECT_EQ(RefusalOf(text, {.collected = collected, .permissions = {}}), "") << file.path();
    loaded[collected] = text;
  }
  ASSERT_GT(loaded.size(), 10u);
  for (const auto& [time, text] : loaded) EXPECT_EQ(Shown("testhost", time + kMinute - 1), text) << time;
  EXPECT_EQ(Shown("testhost", loaded.begin()->first - 1), "");

  const std::string desktop = SourceFile("examples/desktop.json");
  EXPECT_EQ(RefusalOf(desktop), "");
  EXPECT_EQ(Shown("vm-desktop", kNow), desktop);
}

TEST_P(HistoryTest, RandomHistoriesAreShownAsLoadedAtEveryTimeAndAfterPruning) {
  const int histories = GetParam() == store::Dialect::kSqlite ? 4 : 2;
  for (int seed = 1; seed <= histories; ++seed) {
    SCOPED_TRACE(seed);
    Mutation mutation(static_cast<unsigned>(seed));
    const std::string host = "host" + std::to_string(seed);
    std::map<store::Seconds, std::string> loaded;
    Json document = Desktop(kNow);
    store::Seconds time = kNow - 90 * kDay;
    for (int report = 0; report < 40; ++report) {
      mutation.Apply(document);
      document["system"]["name"] = host;
      time += 1 + static_cast<store::Seconds>(mutation.Below(2 * kDay));
      document["origin"]["collected"] = store::FormatTime(time);
      Load(document);
      loaded[time] = Printed(document);
    }
    for (auto report = loaded.begin(); report != loaded.end(); ++report) {
      const auto next = std::next(report);
      ASSERT_EQ(Shown(host, report->first), report->second);
      if (next != loaded.end()) {
        ASSERT_EQ(Shown(host, next->first - 1), report->second);
      }
    }
    const auto kept = std::next(loaded.begin(), 25);
    store::Prune(Db(), kept->first + 1);
    EXPECT_EQ(Shown(host, kept->first - 1), "");
    for (auto report = kept; report != loaded.end(); ++report)
      ASSERT_EQ(Shown(host, report->first), report->second);
    EXPECT_EQ(Count("SELECT COUNT(*) FROM device WHERE host = '" + host + "'"),
              static_cast<std::int64_t>(document["classes"]["KALDO_USBDevice"].size()));
  }
}

TEST(TimelessTextTest, TextsThatDifferInTheirTimeAloneHaveOneHash) {
  const auto first = store::WithoutTime(Desktop(kNow).dump());
  const auto second = store::WithoutTime(Desktop(kNow + 1).dump());
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->time, kNow);
  EXPECT_EQ(second->time, kNow + 1);
  EXPECT_EQ(first->hash, second->hash);
  const std::string time = R"("collected":"2026-11-22T00:00:00Z")";
  EXPECT_NE(store::WithoutTime("{" + time + "}")->hash, store::WithoutTime("{" + time + " }")->hash);
  EXPECT_NE(store::WithoutTime("{ " + time + "}")->hash, store::WithoutTime("{" + time + " }")->hash);
  for (const std::string& text :
       {std::string("{}"), "{" + time + "," + time + "}",
        std::string(R"({"collected":"2026-11-31T00:00:00Z"})"), std::string(R"({"collected":"2026-11-2)")}) {
    EXPECT_FALSE(store::WithoutTime(text)) << text;
  }
}

TEST_P(HistoryTest, AnUnchangedReportWritesOneRow) {
  Load(Desktop(kNow - kDay));
  const std::size_t before = Content().size();
  WatchedDatabase watched(Db());
  store::Loader loader(fClock, {});
  EXPECT_EQ(loader.Load(watched, {Desktop(kNow).dump()}, "test"), std::nullopt);
  EXPECT_EQ(loader.Counts().unchanged, 1u);
  EXPECT_EQ(Content().size(), before + 1);
  std::vector<std::string> writing;
  for (const std::string& statement : watched.Statements()) {
    const std::string word = statement.substr(0, statement.find(' '));
    if (word == "INSERT" || word == "UPDATE" || word == "DELETE") writing.push_back(statement);
  }
  EXPECT_EQ(writing, std::vector<std::string>{
                         "INSERT INTO report (host_id, collected, loaded, state) VALUES (?, ?, ?, ?)"});
}

TEST_P(HistoryTest, ATextThatIsRepeatedIsStoredAsIfItWereReadAsAWhole) {
  const std::vector<std::string> results = LoadRepeatedTexts(false);
  EXPECT_EQ(results, LoadRepeatedTexts(true));
  EXPECT_THAT(results, IsSupersetOf({StartsWith("1 0 0 0 a: taken"), StartsWith("0 1 0 0 a: taken"),
                                     StartsWith("0 0 1 0 a: taken"), StartsWith("0 0 0 1 a: taken")}));
  for (const char* const reason : {"another machine", "random key", "an hour after now"}) {
    EXPECT_THAT(results, Contains(HasSubstr(reason)));
  }
}

TEST_P(HistoryTest, AChangedDeviceWritesOnlyItself) {
  Load(Desktop(kNow - kDay));
  const std::int64_t before = Count("SELECT COUNT(*) FROM item");
  Json document = Desktop(kNow);
  document["classes"]["KALDO_USBDevice"][0]["SubclassCode"] = 9;
  Load(document);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM item"), before + 1);
  EXPECT_EQ(Select("SELECT since, until FROM item WHERE until IS NOT NULL", 2),
            std::vector<std::string>{std::to_string(kNow - kDay) + "|" + std::to_string(kNow)});
}

FOR_BOTH_DATABASES(HistoryTest);

}  // namespace usbinfo_test
