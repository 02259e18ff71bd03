// Inserts many rows with few statements.
#pragma once

#include <string>
#include <vector>

#include "store/Database.h"

namespace store {

/// Inserts `rows`, each with a value for each of `columns`, in their order. Throws DatabaseError.
void InsertRows(Database& database, const std::string& table, const std::vector<std::string>& columns,
                const std::vector<Parameters>& rows);

/// Calls `take` with parts of 0 to `count`, begin and end: as many as possible of 32, then 16, 8 and so on,
/// so that statements with one value per element have few different texts.
template <typename Take>
void ForEachPart(std::size_t count, Take take) {
  constexpr std::size_t kLargest = 32;
  std::size_t size = kLargest;
  for (std::size_t begin = 0; begin < count; begin += size) {
    while (size > count - begin) size /= 2;
    take(begin, begin + size);
  }
}

/// "?, ?, ?"
std::string Placeholders(std::size_t count);

}  // namespace store
