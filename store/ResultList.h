// What a command lists: as a table for people, as JSON or as comma-separated values for programs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/text/Surface.h"
#include "cli/text/TextTable.h"
#include "store/TimeText.h"

namespace store {

/// A point in time in a cell.
struct Time {
  Seconds seconds;
};

/// Nothing is null in JSON, and empty elsewhere.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string, std::vector<std::string>, Time>;

template <typename Value>
Cell CellOf(const std::optional<Value>& value) {
  return value ? Cell(*value) : Cell();
}

inline Cell TimeCell(const std::optional<Seconds>& time) {
  return time ? Cell(Time{*time}) : Cell();
}

struct ResultColumn {
  /// In JSON and as the heading of CSV; in capitals, the heading of the table.
  std::string name;
  cli::Importance importance = cli::Importance::kUseful;
  bool isNumber = false;
  /// Too much for a table.
  bool isForPrograms = false;
};

class ResultList {
 public:
  /// `name` is that of the list in JSON, whose schema is "usbinfo.NAME/1".
  ResultList(std::string name, std::vector<ResultColumn> columns)
      : fName(std::move(name)), fColumns(std::move(columns)) {}

  /// A cell for each column.
  void AddRow(std::vector<Cell> cells) { fRows.push_back(std::move(cells)); }
  bool IsEmpty() const { return fRows.empty(); }

  /// "table", "json" and "csv".
  static const std::vector<std::string>& Formats();
  /// The list in one of the formats.
  std::string Render(const std::string& format, const cli::Surface& surface) const;

 private:
  std::string Table(const cli::Surface& surface) const;
  std::string Json() const;
  std::string Csv() const;

  std::string fName;
  std::vector<ResultColumn> fColumns;
  std::vector<std::vector<Cell>> fRows;
};

}  // namespace store
