// What the store asks of a database. SociDatabase does it; tests put their own in between, to count
// statements or to fail at one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "cli/text/UserError.h"

namespace store {

/// The database cannot do what it was asked for: it is locked, full, gone or damaged. The message names it.
class DatabaseError : public cli::UserError {
 public:
  using UserError::UserError;
};

enum class Dialect { kSqlite, kPostgresql };

using Integer = std::optional<std::int64_t>;
using Decimal = std::optional<double>;
using Text = std::optional<std::string>;

/// The value of a `?` in a statement; nothing stands for NULL. A statement gives each `?` the same type every
/// time. Texts are UTF-8 without zero bytes.
using Parameter = std::variant<Integer, Decimal, Text>;
using Parameters = std::vector<Parameter>;

/// A row of a result.
class Row {
 public:
  explicit Row(std::vector<Text> cells) : fCells(std::move(cells)) {}

  bool IsNull(std::size_t column) const { return !fCells[column].has_value(); }
  /// Empty for NULL.
  std::string String(std::size_t column) const { return fCells[column].value_or(""); }
  Text OptionalString(std::size_t column) const { return fCells[column]; }
  /// Both 0 for NULL. Throw DatabaseError where the cell holds no number.
  std::int64_t Number(std::size_t column) const;
  double Real(std::size_t column) const;
  Integer OptionalNumber(std::size_t column) const;
  Decimal OptionalReal(std::size_t column) const;

 private:
  std::vector<Text> fCells;
};

struct Query {
  /// One statement, with `?` in place of values.
  std::string sql;
  /// How many columns its rows have.
  std::size_t columns = 1;
};

/// Every function throws DatabaseError.
class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  virtual ~Database() = default;

  virtual Dialect GetDialect() const = 0;
  /// What messages call it; holds no password.
  virtual const std::string& Name() const = 0;

  /// Runs one statement without a result, with `?` in place of values; gives the number of rows that it
  /// changed.
  virtual std::uint64_t Execute(const std::string& sql, const Parameters& parameters) = 0;
  /// Calls `take` with each row of the result. `take` must not use the database.
  virtual void Select(const Query& query, const Parameters& parameters,
                      const std::function<void(const Row&)>& take) = 0;
};

/// All rows of the result.
std::vector<Row> Rows(Database& database, const Query& query, const Parameters& parameters);
/// The first row of the result, if it has one.
std::optional<Row> FirstRow(Database& database, const Query& query, const Parameters& parameters);

}  // namespace store
