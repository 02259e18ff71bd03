#include "tests/store/support/StoreTest.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "cli/format/JsonFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/FromJson.h"
#include "store/OpenStore.h"
#include "store/ReportReader.h"
#include "tests/store/support/PostgresServer.h"

namespace usbinfo_test {

namespace {

struct Table {
  const char* name;
  std::size_t columns;
  bool beginsWithHost;
};

constexpr Table kTables[] = {{"meta", 1, false},   {"host", 4, true},       {"node", 4, false},
                             {"state", 14, true},  {"report", 4, true},     {"item", 25, true},
                             {"late", 5, true},    {"comparison", 7, true}, {"difference", 10, true},
                             {"refused", 8, false}};

std::string Joined(const store::Row& row, std::size_t begin, std::size_t columns) {
  std::string text;
  for (std::size_t column = begin; column < columns; ++column) {
    text += (column == begin ? "" : "|") + row.OptionalString(column).value_or("NULL");
  }
  return text;
}

}  // namespace

std::string SourceFile(const std::string& path) {
  std::ifstream file(std::string(SOURCE_DIR "/") + path);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_TRUE(file) << path;
  return text.str();
}

Json Desktop(store::Seconds collected) {
  static const std::string text = SourceFile("examples/desktop.json");
  Json document = Json::parse(text);
  document["origin"]["collected"] = store::FormatTime(collected);
  return document;
}

std::string Printed(const Json& document) {
  return cli::RenderJson(cli::FromJson(document.dump(), "the test's document"), {});
}

void StoreTest::SetUp() {
  if (GetParam() == store::Dialect::kSqlite) {
    fName = fFolder.File("store.db");
  } else if (PostgresServer* const server = PostgresServer::Shared()) {
    fName = server->NewUrl();
  } else {
    GTEST_SKIP() << "PostgreSQL is not installed";
  }
  fDatabase = Connect();
}

std::unique_ptr<store::Database> StoreTest::Connect() const {
  return store::OpenStore(store::FindDatabase(fName), store::Access::kCreating);
}

store::Outcome StoreTest::Load(const Json& document, store::LoadSettings settings) {
  store::Loader loader(fClock, settings);
  EXPECT_EQ(loader.Load(Db(), {document.dump()}, "test"), std::nullopt);
  if (loader.Counts().changed == 1) return store::Outcome::kChanged;
  if (loader.Counts().unchanged == 1) return store::Outcome::kUnchanged;
  return loader.Counts().known == 1 ? store::Outcome::kKnown : store::Outcome::kLate;
}

std::string StoreTest::RefusalOf(const std::string& document, store::LoadSettings settings) {
  return store::Loader(fClock, settings).Load(Db(), {document}, "test").value_or("");
}

std::string StoreTest::Shown(const std::string& host, store::Seconds at) {
  const auto inventory = store::ReadReport(Db(), host, at);
  return inventory ? cli::RenderJson(*inventory, {}) : "";
}

std::vector<std::string> StoreTest::Content() {
  std::vector<std::string> content;
  for (const Table& table : kTables) {
    Db().Select({fmt::format("SELECT * FROM {}", table.name), table.columns}, {}, [&](const store::Row& row) {
      content.push_back(
          fmt::format("{}: {}", table.name, Joined(row, table.beginsWithHost ? 1 : 0, table.columns)));
    });
  }
  std::sort(content.begin(), content.end());
  return content;
}

std::int64_t StoreTest::Count(const std::string& query) {
  return store::FirstRow(Db(), {query, 1}, {})->Number(0);
}

std::vector<std::string> StoreTest::Select(const std::string& query, std::size_t columns) {
  std::vector<std::string> rows;
  Db().Select({query, columns}, {}, [&](const store::Row& row) { rows.push_back(Joined(row, 0, columns)); });
  return rows;
}

std::string NameOfDialect(const ::testing::TestParamInfo<store::Dialect>& info) {
  return info.param == store::Dialect::kSqlite ? "Sqlite" : "PostgreSQL";
}

}  // namespace usbinfo_test
