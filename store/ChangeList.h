// What differs between reports that follow each other, as the store holds it, and its forms for people and
// programs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/diff/DiffLine.h"
#include "store/Database.h"
#include "store/TimeText.h"

namespace store {

/// An item that differs.
struct StoredChange {
  std::string className;
  cli::DiffLine line;
  /// The element of usbinfo.diff/2.
  std::string content;
};

/// Two reports of a host.
struct StoredComparison {
  std::string host;
  Seconds previous;
  Seconds collected;
  /// False where their serial numbers do not compare; `remarks` say why.
  bool isCompared;
  /// Sentences for people.
  std::vector<std::string> remarks;
  /// The members "old" and "new" of usbinfo.diff/2.
  std::string before;
  std::string after;
  /// In the order of `usbinfo diff`.
  std::vector<StoredChange> changes;
};

/// Those of all hosts, or of one where `host` is not empty, whose later report was collected at `since` or
/// later; by host and time. Throws DatabaseError.
std::vector<StoredComparison> ReadChanges(Database& database, const std::string& host, Seconds since);

/// As `usbinfo diff` prints each, with the name of the host and the times of the reports in the heading.
std::string RenderChangesText(const std::vector<StoredComparison>& comparisons, bool isColored);
/// One object with a list, a line for each comparison.
std::string RenderChangesJson(const std::vector<StoredComparison>& comparisons);
/// A line for each item that differs.
std::string RenderChangesCsv(const std::vector<StoredComparison>& comparisons);

}  // namespace store
