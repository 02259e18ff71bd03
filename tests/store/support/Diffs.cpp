#include "tests/store/support/Diffs.h"

#include <limits>

#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/FromJson.h"
#include "store/ChangeList.h"

namespace usbinfo_test {

Diffs DiffsOf(const std::vector<std::string>& documents) {
  Diffs diffs;
  for (std::size_t next = 1; next < documents.size(); ++next) {
    const cli::Inventory before = cli::FromJson(documents[next - 1], "the test's document");
    const cli::Inventory after = cli::FromJson(documents[next], "the test's document");
    const cli::InventoryDifference difference = cli::Compare(before, after);
    if (difference.IsEmpty()) continue;
    diffs.text += (diffs.text.empty() ? "" : "\n") + cli::RenderDiffText(difference, false);
    diffs.documents.push_back(Json::parse(cli::RenderDiffJson(difference)).dump());
  }
  return diffs;
}

Diffs StoredDiffs(store::Database& database, const std::string& host) {
  const auto changes = store::ReadChanges(database, host, std::numeric_limits<store::Seconds>::min());
  Diffs diffs{store::RenderChangesText(changes, false), {}};
  const Json list = Json::parse(store::RenderChangesJson(changes));
  for (const Json& change : list["changes"]) {
    EXPECT_EQ(change["host"], host);
    diffs.documents.push_back(change["difference"].dump());
  }
  return diffs;
}

}  // namespace usbinfo_test
