#include "store/Database.h"

#include <fmt/format.h>

#include <charconv>
#include <system_error>

namespace store {

namespace {

template <typename Number>
std::optional<Number> NumberIn(const Text& cell) {
  if (!cell) return std::nullopt;
  Number number = 0;
  const char* const end = cell->data() + cell->size();
  const auto [stop, error] = std::from_chars(cell->data(), end, number);
  if (error == std::errc() && stop == end) return number;
  throw DatabaseError(fmt::format(
      "the store is damaged: \"{}\" stands where a number must be; restore it from a backup", *cell));
}

}  // namespace

std::int64_t Row::Number(std::size_t column) const {
  return OptionalNumber(column).value_or(0);
}

double Row::Real(std::size_t column) const {
  return OptionalReal(column).value_or(0);
}

Integer Row::OptionalNumber(std::size_t column) const {
  return NumberIn<std::int64_t>(fCells[column]);
}

Decimal Row::OptionalReal(std::size_t column) const {
  return NumberIn<double>(fCells[column]);
}

std::vector<Row> Rows(Database& database, const Query& query, const Parameters& parameters) {
  std::vector<Row> rows;
  database.Select(query, parameters, [&](const Row& row) { rows.push_back(row); });
  return rows;
}

std::optional<Row> FirstRow(Database& database, const Query& query, const Parameters& parameters) {
  std::optional<Row> first;
  database.Select(query, parameters, [&](const Row& row) {
    if (!first) first = row;
  });
  return first;
}

}  // namespace store
