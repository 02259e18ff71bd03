#include "store/NodeTable.h"

#include "store/ColumnText.h"

namespace store {

void RecordNode(Database& database, const std::string& node, const std::string& host, Seconds now) {
  database.Execute(
      "INSERT INTO node (name, host_id, tried) VALUES (?, (SELECT id FROM host WHERE name = ?), ?) "
      "ON CONFLICT (name) DO UPDATE SET host_id = excluded.host_id, tried = excluded.tried, reason = NULL",
      {Text(ColumnText(node)), Text(host), Integer(now)});
}

void RecordFailure(Database& database, const std::string& node, const std::string& reason, Seconds now) {
  database.Execute(
      "INSERT INTO node (name, tried, reason) VALUES (?, ?, ?) "
      "ON CONFLICT (name) DO UPDATE SET tried = excluded.tried, reason = excluded.reason",
      {Text(ColumnText(node)), Integer(now), Text(ColumnText(reason))});
}

}  // namespace store
