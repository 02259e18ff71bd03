// A database between the store and the real one: it keeps the statements and calls the test at each of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "store/Database.h"

namespace usbinfo_test {

class WatchedDatabase : public store::Database {
 public:
  /// Where in a statement the test is called.
  enum class Moment { kBefore, kAfter };
  /// Gets the number of the statement, from 1.
  using Watch = std::function<void(std::size_t number, Moment moment)>;

  explicit WatchedDatabase(store::Database& database, Watch watch = {})
      : fDatabase(database), fWatch(std::move(watch)) {}

  const std::vector<std::string>& Statements() const { return fStatements; }

  store::Dialect GetDialect() const override { return fDatabase.GetDialect(); }
  const std::string& Name() const override { return fDatabase.Name(); }

  std::uint64_t Execute(const std::string& sql, const store::Parameters& parameters) override {
    Begin(sql);
    const std::uint64_t changed = fDatabase.Execute(sql, parameters);
    Call(Moment::kAfter);
    return changed;
  }

  void Select(const store::Query& query, const store::Parameters& parameters,
              const std::function<void(const store::Row&)>& take) override {
    Begin(query.sql);
    fDatabase.Select(query, parameters, take);
    Call(Moment::kAfter);
  }

 private:
  void Begin(const std::string& sql) {
    fStatements.push_back(sql);
    Call(Moment::kBefore);
  }

  void Call(Moment moment) {
    if (fWatch) fWatch(fStatements.size(), moment);
  }

  store::Database& fDatabase;
  Watch fWatch;
  std::vector<std::string> fStatements;
};

}  // namespace usbinfo_test
