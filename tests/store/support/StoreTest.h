// What the store's tests share: an empty store on each database, documents, and what the store holds as text.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "store/Database.h"
#include "store/Loader.h"
#include "tests/store/support/TestClock.h"
#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {

using Json = nlohmann::ordered_json;

inline constexpr store::Seconds kMinute = 60;
inline constexpr store::Seconds kHour = 60 * kMinute;
inline constexpr store::Seconds kDay = 24 * kHour;
/// 2026-11-22T00:00:00Z, when the tests begin.
inline constexpr store::Seconds kNow = 1795305600;

/// The content of the file at `path` below the project's folder.
std::string SourceFile(const std::string& path);
/// The inventory of examples/desktop.json, collected at that time.
Json Desktop(store::Seconds collected);
/// The document as usbinfo prints it.
std::string Printed(const Json& document);

/// An empty store in a database of that kind; skips where there is no server for it.
class StoreTest : public ::testing::TestWithParam<store::Dialect> {
 protected:
  void SetUp() override;

  /// As --db takes it.
  const std::string& Name() const { return fName; }
  store::Database& Db() { return *fDatabase; }
  /// Another connection to the same store.
  std::unique_ptr<store::Database> Connect() const;

  /// Loads a document that is expected to be taken.
  store::Outcome Load(const Json& document, store::LoadSettings settings = {});
  /// The reason for which it is refused; empty when it is taken.
  std::string RefusalOf(const std::string& document, store::LoadSettings settings = {});
  /// The document that the store shows; empty for none.
  std::string Shown(const std::string& host, store::Seconds at);
  /// All rows of all tables, without the numbers of hosts.
  std::vector<std::string> Content();
  /// The one number that the query gives.
  std::int64_t Count(const std::string& query);
  /// The cells of the rows that the query gives, in order, joined by a bar.
  std::vector<std::string> Select(const std::string& query, std::size_t columns);

  TestClock fClock{kNow};

 private:
  TemporaryFolder fFolder;
  std::string fName;
  std::unique_ptr<store::Database> fDatabase;
};

std::string NameOfDialect(const ::testing::TestParamInfo<store::Dialect>& info);

#define FOR_BOTH_DATABASES(suite)                                                                   \
  INSTANTIATE_TEST_SUITE_P(Databases, suite,                                                        \
                           ::testing::Values(store::Dialect::kSqlite, store::Dialect::kPostgresql), \
                           NameOfDialect)

}  // namespace usbinfo_test
