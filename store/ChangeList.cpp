#include "store/ChangeList.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "cli/diff/DiffJson.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/JsonValues.h"
#include "cli/text/JsonWriter.h"
#include "store/ResultList.h"

namespace store {

namespace {

/// A host's id and the time of the later report.
using Key = std::pair<std::int64_t, Seconds>;

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

cli::DifferenceKind KindOfName(const std::string& name) {
  for (const cli::DifferenceKind kind : cli::kDifferenceKinds) {
    if (cli::NameOf(kind) == name) return kind;
  }
  throw DatabaseError(
      fmt::format("the store is damaged: there is no change \"{}\"; restore it from a backup", name));
}

/// The end of both queries; the index of comparison finds the rows.
std::string Condition(const std::string& host) {
  const std::string condition = " JOIN host ON host.id = comparison.host_id WHERE comparison.collected >= ?";
  return host.empty() ? condition : condition + " AND host.name = ?";
}

Parameters ValuesOf(const std::string& host, Seconds since) {
  Parameters values = {Integer(since)};
  if (!host.empty()) values.emplace_back(Text(host));
  return values;
}

std::map<Key, StoredComparison> ReadComparisons(Database& database, const std::string& host, Seconds since) {
  const Query query = {
      "SELECT host_id, collected, host.name, previous, is_compared, remarks, old, new FROM comparison" +
          Condition(host),
      8};
  std::map<Key, StoredComparison> comparisons;
  database.Select(query, ValuesOf(host, since), [&](const Row& row) {
    comparisons[{row.Number(0), row.Number(1)}] = {.host = row.String(2),
                                                   .previous = row.Number(3),
                                                   .collected = row.Number(1),
                                                   .isCompared = row.Number(4) != 0,
                                                   .remarks = LinesOf(row.String(5)),
                                                   .before = row.String(6),
                                                   .after = row.String(7),
                                                   .changes = {}};
  });
  return comparisons;
}

StoredChange ChangeIn(const Row& row) {
  return {.className = row.String(3),
          .line = {.kind = KindOfName(row.String(2)),
                   .placeBefore = row.String(5),
                   .place = row.String(4),
                   .description = row.String(6),
                   .properties = LinesOf(row.String(7))},
          .content = row.String(8)};
}

void ReadItems(Database& database, const std::string& host, Seconds since,
               std::map<Key, StoredComparison>& comparisons) {
  const Query query = {
      "SELECT difference.host_id, difference.collected, kind, class, place, place_before, description, "
      "properties, content FROM comparison JOIN difference ON difference.host_id = comparison.host_id "
      "AND difference.collected = comparison.collected" +
          Condition(host) + " ORDER BY comparison.collected, difference.number",
      9};
  database.Select(query, ValuesOf(host, since), [&](const Row& row) {
    comparisons.at({row.Number(0), row.Number(1)}).changes.push_back(ChangeIn(row));
  });
}

/// The machine as the store knows it.
cli::ComparedMachine MachineOf(const std::string& host, Seconds collected) {
  cli::Origin origin;
  origin.collected = FormatTime(collected);
  return {host, origin};
}

std::string DiffDocument(const StoredComparison& comparison) {
  cli::DiffJsonParts parts(comparison.before, comparison.after);
  for (const StoredChange& change : comparison.changes) parts.Add(change.line.kind, change.content);
  return parts.Document();
}

/// The object without its last member, "difference".
std::string Beginning(const StoredComparison& comparison) {
  cli::JsonWriter json(cli::JsonWriter::Layout::kOneLine);
  json.BeginObject();
  cli::WriteMember(json, "host", comparison.host);
  cli::WriteMember(json, "previous", FormatTime(comparison.previous));
  cli::WriteMember(json, "collected", FormatTime(comparison.collected));
  cli::WriteMember(json, "remarks", comparison.remarks);
  json.EndObject();
  std::string text = json.Take();
  text.pop_back();
  return text;
}

void AddRows(const StoredComparison& comparison, ResultList& list) {
  const auto add = [&](Cell kind, Cell className, const cli::DiffLine& line) {
    list.AddRow({comparison.host, Time{comparison.previous}, Time{comparison.collected}, std::move(kind),
                 std::move(className), line.place, line.placeBefore, line.description, line.properties,
                 comparison.remarks});
  };
  if (!comparison.isCompared) add(Cell(), Cell(), {});
  for (const StoredChange& change : comparison.changes) {
    add(std::string(cli::NameOf(change.line.kind)), change.className, change.line);
  }
}

}  // namespace

std::vector<StoredComparison> ReadChanges(Database& database, const std::string& host, Seconds since) {
  std::map<Key, StoredComparison> found = ReadComparisons(database, host, since);
  ReadItems(database, host, since, found);
  std::vector<StoredComparison> comparisons;
  comparisons.reserve(found.size());
  for (auto& [key, comparison] : found) comparisons.push_back(std::move(comparison));
  // Databases sort texts by their own rules.
  std::sort(comparisons.begin(), comparisons.end(), [](const auto& left, const auto& right) {
    return std::tie(left.host, left.collected) < std::tie(right.host, right.collected);
  });
  return comparisons;
}

std::string RenderChangesText(const std::vector<StoredComparison>& comparisons, bool isColored) {
  std::string text;
  for (const StoredComparison& comparison : comparisons) {
    if (!text.empty()) text += "\n";
    text += cli::RenderDiffHeading(MachineOf(comparison.host, comparison.previous),
                                   MachineOf(comparison.host, comparison.collected));
    for (const std::string& remark : comparison.remarks) text += fmt::format("! {}\n", remark);
    std::vector<cli::DiffLine> lines;
    for (const StoredChange& change : comparison.changes) lines.push_back(change.line);
    for (const cli::DiffLine& line : lines) text += cli::RenderDiffLine(line, isColored);
    if (!lines.empty()) text += cli::RenderDiffCounts(lines);
  }
  return text;
}

std::string RenderChangesJson(const std::vector<StoredComparison>& comparisons) {
  std::string text = R"({"schema":"usbinfo.changes/1","changes":[)";
  const char* separator = "\n";
  for (const StoredComparison& comparison : comparisons) {
    text += fmt::format("{}{},\"difference\":{}}}", std::exchange(separator, ",\n"), Beginning(comparison),
                        comparison.isCompared ? DiffDocument(comparison) : "null");
  }
  return text + (comparisons.empty() ? "]}\n" : "\n]}\n");
}

std::string RenderChangesCsv(const std::vector<StoredComparison>& comparisons) {
  ResultList list("changes", {{.name = "host"},
                              {.name = "previous"},
                              {.name = "collected"},
                              {.name = "kind"},
                              {.name = "class"},
                              {.name = "place"},
                              {.name = "placeBefore"},
                              {.name = "description"},
                              {.name = "properties"},
                              {.name = "remarks"}});
  for (const StoredComparison& comparison : comparisons) AddRows(comparison, list);
  return list.Render("csv", cli::SurfaceOf(false, cli::Color::kNever));
}

}  // namespace store
