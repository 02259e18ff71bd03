#include "store/ChangeWriter.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "cli/diff/Comparability.h"
#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "store/RowInsertion.h"

using cli::Inventory;

namespace store {

namespace {

bool IsOtherMachine(const Inventory& before, const Inventory& after) {
  if (!before.GetOrigin() || !after.GetOrigin()) return false;
  const std::optional<std::string>& old = before.GetOrigin()->machine;
  const std::optional<std::string>& now = after.GetOrigin()->machine;
  return old && now && *old != *now;
}

bool IsSuspect(const Inventory& inventory) {
  return inventory.GetOrigin() && !inventory.GetOrigin()->findings.empty();
}

/// What has to be known of the comparison besides what differs, a line each; nothing for no remark.
Text RemarksOn(const Inventory& before, const Inventory& after, const std::optional<std::string>& obstacle) {
  std::vector<std::string> remarks;
  if (obstacle) remarks.push_back("not compared: " + *obstacle);
  if (IsOtherMachine(before, after)) remarks.emplace_back("another machine than before");
  if (IsSuspect(before) || IsSuspect(after)) {
    remarks.emplace_back("suspect: a device may have forged a part of a report");
  }
  if (before.GetOrigin().has_value() != after.GetOrigin().has_value()) {
    remarks.emplace_back("one report does not say whether its serial numbers are masked");
  }
  return remarks.empty() ? Text() : Text(fmt::format("{}", fmt::join(remarks, "\n")));
}

/// Of reports that are not compared.
cli::InventoryDifference NoDifference(const Inventory& before, const Inventory& after) {
  cli::InventoryDifference none;
  none.before = {before.SystemName(), before.GetOrigin()};
  none.after = {after.SystemName(), after.GetOrigin()};
  return none;
}

Parameters RowOf(const std::vector<Parameter>& key, std::int64_t number, const cli::DiffEntry& entry) {
  const cli::DiffLine& line = entry.line;
  Parameters row = key;
  row.insert(
      row.end(),
      {Integer(number), Text(std::string(cli::NameOf(line.kind))), Text(entry.item->item->Schema().name),
       Text(line.place), line.placeBefore.empty() ? Text() : Text(line.placeBefore), Text(line.description),
       line.properties.empty() ? Text() : Text(fmt::format("{}", fmt::join(line.properties, "\n"))),
       Text(cli::DiffItemJson(entry))});
  return row;
}

void WriteEntries(Database& database, const Parameters& key, const std::vector<cli::DiffEntry>& entries) {
  static const std::vector<std::string> columns = {"host_id",    "collected", "number",       "kind",
                                                   "class",      "place",     "place_before", "description",
                                                   "properties", "content"};
  std::vector<Parameters> rows;
  rows.reserve(entries.size());
  for (const cli::DiffEntry& entry : entries) {
    rows.push_back(RowOf(key, static_cast<std::int64_t>(rows.size()) + 1, entry));
  }
  InsertRows(database, "difference", columns, rows);
}

}  // namespace

void WriteChanges(Database& database, std::int64_t hostId, const EarlierReport& before, const Report& after) {
  const Inventory& old = before.inventory;
  const Inventory& now = after.GetInventory();
  const std::optional<std::string> obstacle = cli::DifferenceOfMasks(old, now);
  const cli::InventoryDifference difference = obstacle ? NoDifference(old, now) : cli::Compare(old, now);
  if (!obstacle && difference.IsEmpty() && !IsOtherMachine(old, now)) return;
  const Parameters key = {Integer(hostId), Integer(after.Collected())};
  database.Execute(
      "INSERT INTO comparison (host_id, collected, previous, is_compared, remarks, old, new) "
      "VALUES (?, ?, ?, ?, ?, ?, ?)",
      {Integer(hostId), Integer(after.Collected()), Integer(before.collected), Integer(obstacle ? 0 : 1),
       RemarksOn(old, now, obstacle), Text(cli::DiffMachineJson(difference.before)),
       Text(cli::DiffMachineJson(difference.after))});
  WriteEntries(database, key, cli::EntriesOf(difference));
}

}  // namespace store
