#include "store/HostUpkeep.h"

#include <fmt/format.h>

#include "cli/text/UserError.h"
#include "store/ReportReader.h"
#include "store/Transaction.h"

namespace store {

using Purpose = Transaction::Purpose;

std::optional<std::uint64_t> Forget(Database& database, const std::string& host) {
  Transaction transaction(database, Purpose::kWrite);
  const Query select = {std::string("SELECT id FROM host WHERE name = ?") + LockClause(database.GetDialect()),
                        1};
  const std::optional<Row> row = FirstRow(database, select, {Text(host)});
  // One that gave nothing but errors is listed among the hosts, and is forgotten like one.
  const std::uint64_t errors =
      database.Execute("DELETE FROM node WHERE name = ? AND host_id IS NULL", {Text(host)}) +
      database.Execute("DELETE FROM refused WHERE host = ?", {Text(host)});
  if (!row && errors > 0) transaction.Commit();
  if (!row) return errors > 0 ? std::optional<std::uint64_t>(0) : std::nullopt;
  const Parameters id = {row->OptionalNumber(0)};
  const std::uint64_t reports = database.Execute("DELETE FROM report WHERE host_id = ?", id);
  database.Execute("DELETE FROM host WHERE id = ?", id);
  transaction.Commit();
  return reports;
}

bool Rename(Database& database, const std::string& before, const std::string& after) {
  Transaction transaction(database, Purpose::kWrite);
  if (HasHost(database, after)) {
    throw cli::UserError(fmt::format(
        "the store has a host {} already; rename that one, or delete it with usbinfo-store forget", after));
  }
  if (database.Execute("UPDATE host SET name = ? WHERE name = ?", {Text(after), Text(before)}) == 0)
    return false;
  database.Execute("UPDATE refused SET host = ? WHERE host = ?", {Text(after), Text(before)});
  transaction.Commit();
  return true;
}

Pruned Prune(Database& database, Seconds since) {
  Transaction transaction(database, Purpose::kWrite);
  Pruned pruned;
  pruned.reports = database.Execute(
      "DELETE FROM report WHERE collected < (SELECT MAX(kept.collected) FROM report AS kept "
      "WHERE kept.host_id = report.host_id AND kept.collected <= ?)",
      {Integer(since)});
  database.Execute(
      "DELETE FROM state WHERE NOT EXISTS "
      "(SELECT 1 FROM report WHERE report.host_id = state.host_id AND report.state = state.number)",
      {});
  pruned.items = database.Execute(
      "DELETE FROM item WHERE until <= "
      "(SELECT MIN(report.collected) FROM report WHERE report.host_id = item.host_id)",
      {});
  // Or a time before the first report that is left would have the items that are left, and no others.
  database.Execute(
      "UPDATE item SET since = (SELECT MIN(report.collected) FROM report "
      "WHERE report.host_id = item.host_id) WHERE since < "
      "(SELECT MIN(report.collected) FROM report WHERE report.host_id = item.host_id)",
      {});
  database.Execute(
      "DELETE FROM comparison WHERE collected <= "
      "(SELECT MIN(report.collected) FROM report WHERE report.host_id = comparison.host_id)",
      {});
  pruned.late = database.Execute("DELETE FROM late WHERE collected < ?", {Integer(since)});
  pruned.refused = database.Execute("DELETE FROM refused WHERE last_time < ?", {Integer(since)});
  transaction.Commit();
  return pruned;
}

}  // namespace store
