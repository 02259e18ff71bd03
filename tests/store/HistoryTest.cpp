// What is shown is what was loaded, at every time, to the byte.
#include <filesystem>
#include <map>

#include "store/HostUpkeep.h"
#include "tests/store/support/Mutation.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"

namespace fs = std::filesystem;

namespace usbinfo_test {

namespace {

using HistoryTest = StoreTest;

}  // namespace

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
