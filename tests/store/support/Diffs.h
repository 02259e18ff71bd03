// Changes as the store has them, and as the comparison of documents gives them.
#pragma once

#include <string>
#include <vector>

#include "tests/store/support/StoreTest.h"

namespace usbinfo_test {

struct Diffs {
  /// What differs, as `usbinfo diff` prints it, one after the other with an empty line between them.
  std::string text;
  /// As JSON, usbinfo.diff/2.
  std::vector<std::string> documents;

  bool operator==(const Diffs&) const = default;
};

/// What differs between each of these documents and the next one.
Diffs DiffsOf(const std::vector<std::string>& documents);
/// What the store has of a host.
Diffs StoredDiffs(store::Database& database, const std::string& host);

}  // namespace usbinfo_test
