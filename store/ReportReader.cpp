#include "store/ReportReader.h"

#include <fmt/format.h>

#include <array>
#include <map>
#include <utility>
#include <vector>

#include "cli/model/FromJson.h"
#include "cli/text/JsonWriter.h"
#include "store/NumberRanges.h"
#include "store/Section.h"
#include "store/Transaction.h"

namespace store {

namespace {

constexpr std::size_t kSections = 8;

struct State {
  std::int64_t hostId;
  Seconds collected;
  std::string systemName;
  Text origin;
  bool saysCollected;
  bool hasKernel;
  std::string items;
};

[[noreturn]] void ThrowDamage(const Database& database, const std::string& what) {
  throw DatabaseError(
      fmt::format("the store {} is damaged: {}; restore it from a backup", database.Name(), what));
}

std::optional<State> SelectState(Database& database, const std::string& host, Seconds at) {
  const Query query = {
      "SELECT host.id, report.collected, state.system_name, state.origin, state.says_collected, "
      "state.has_kernel, state.items FROM host "
      "JOIN report ON report.host_id = host.id "
      "JOIN state ON state.host_id = host.id AND state.number = report.state "
      "WHERE host.name = ? AND report.collected <= ? ORDER BY report.collected DESC LIMIT 1",
      7};
  const auto row = FirstRow(database, query, {Text(host), Integer(at)});
  if (!row) return std::nullopt;
  return State{.hostId = row->Number(0),
               .collected = row->Number(1),
               .systemName = row->String(2),
               .origin = row->OptionalString(3),
               .saysCollected = row->Number(4) != 0,
               .hasKernel = row->Number(5) != 0,
               .items = row->String(6)};
}

/// The contents of a report's items by section, each "{...},{...}".
class Contents {
 public:
  Contents(Database& database, const State& state) {
    const std::map<std::int64_t, Row> rows = Select(database, state);
    const auto numbers = ParseRanges(state.items);
    if (!numbers) ThrowDamage(database, "a state has no list of items");
    for (const std::int64_t number : *numbers) {
      const auto found = rows.find(number);
      if (found == rows.end()) ThrowDamage(database, fmt::format("item {} is missing", number));
      const std::int64_t section = found->second.Number(1);
      if (section < 0 || section >= static_cast<std::int64_t>(kSections))
        ThrowDamage(database, "an item has no section");
      Add(fSections[static_cast<std::size_t>(section)], found->second.String(2));
    }
  }

  const std::string& Of(Section section) const { return fSections[static_cast<std::size_t>(section)]; }

 private:
  static std::map<std::int64_t, Row> Select(Database& database, const State& state) {
    const Query query = {
        "SELECT number, section, content FROM item "
        "WHERE host_id = ? AND since <= ? AND (until IS NULL OR until > ?)",
        3};
    std::map<std::int64_t, Row> rows;
    database.Select(query, {Integer(state.hostId), Integer(state.collected), Integer(state.collected)},
                    [&](const Row& row) { rows.emplace(row.Number(0), row); });
    return rows;
  }

  static void Add(std::string& list, const std::string& content) {
    if (!list.empty()) list += ',';
    list += content;
  }

  std::array<std::string, kSections> fSections;
};

std::string Quoted(const std::string& text) {
  cli::JsonWriter json(cli::JsonWriter::Layout::kOneLine);
  json.String(text);
  return json.Take();
}

/// The document, without the time.
std::string Assemble(const State& state, const Contents& contents) {
  std::string classes;
  for (const Section section : kClassSections) {
    if (!classes.empty()) classes += ',';
    classes += fmt::format("\"{}\":[{}]", schema::ClassOf(ClassOf(section)).name, contents.Of(section));
  }
  const std::string kernel =
      fmt::format(R"({{"devices":[{}],"ports":[{}]}})", contents.Of(Section::kDeviceFacts),
                  contents.Of(Section::kPortFacts));
  return fmt::format(R"({{"schema":"usbinfo.inventory/2","system":{{"name":{},"creationClassName":"{}"}},)"
                     R"("origin":{},"classes":{{{}}},"kernel":{}}})",
                     Quoted(state.systemName), schema::kSystemClass, state.origin.value_or("null"), classes,
                     state.hasKernel ? kernel : "null");
}

cli::Inventory Read(const Database& database, const State& state, const Contents& contents) {
  try {
    cli::Inventory inventory = cli::FromJson(Assemble(state, contents), "a report");
    if (!inventory.GetOrigin() || !state.saysCollected) return inventory;
    cli::Origin origin = *inventory.GetOrigin();
    origin.collected = FormatTime(state.collected);
    inventory.SetOrigin(std::move(origin));
    return inventory;
  } catch (const cli::UserError& error) {
    ThrowDamage(database, error.what());
  }
}

}  // namespace

std::optional<cli::Inventory> ReadReport(Database& database, const std::string& host, Seconds at) {
  const Transaction transaction(database, Transaction::Purpose::kRead);
  return ReadReportWithin(database, host, at);
}

std::optional<cli::Inventory> ReadReportWithin(Database& database, const std::string& host, Seconds at) {
  const std::optional<State> state = SelectState(database, host, at);
  if (!state) return std::nullopt;
  return Read(database, *state, Contents(database, *state));
}

bool HasHost(Database& database, const std::string& host) {
  return FirstRow(database, {"SELECT 1 FROM host WHERE name = ?", 1}, {Text(host)}).has_value();
}

}  // namespace store
