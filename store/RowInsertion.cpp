#include "store/RowInsertion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace store {

std::string Placeholders(std::size_t count) {
  return fmt::format("{}", fmt::join(std::vector<std::string>(count, "?"), ", "));
}

void InsertRows(Database& database, const std::string& table, const std::vector<std::string>& columns,
                const std::vector<Parameters>& rows) {
  const std::string row = "(" + Placeholders(columns.size()) + ")";
  ForEachPart(rows.size(), [&](std::size_t begin, std::size_t end) {
    Parameters values;
    for (std::size_t at = begin; at < end; ++at) {
      values.insert(values.end(), rows[at].begin(), rows[at].end());
    }
    database.Execute(fmt::format("INSERT INTO {} ({}) VALUES {}", table, fmt::join(columns, ", "),
                                 fmt::join(std::vector<std::string>(end - begin, row), ", ")),
                     values);
  });
}

}  // namespace store
