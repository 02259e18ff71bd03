#include "store/ReportWriter.h"

#include <fmt/format.h>

#include <map>
#include <utility>
#include <vector>

#include "store/ItemColumns.h"
#include "store/NumberRanges.h"
#include "store/Refusal.h"
#include "store/ReportReader.h"
#include "store/RowInsertion.h"
#include "store/Transaction.h"

namespace store {

namespace {

/// How far clocks may differ.
constexpr Seconds kMostAhead = 3600;

Integer Count(std::size_t count) {
  return static_cast<std::int64_t>(count);
}

/// The items that a host's last report has, by their hashes. A report may have the same item twice.
class CurrentItems {
 public:
  CurrentItems(Database& database, std::int64_t hostId) {
    const Query query = {"SELECT number, hash FROM item WHERE host_id = ? AND until IS NULL ORDER BY number",
                         2};
    database.Select(query, {Integer(hostId)},
                    [&](const Row& row) { fNumbers[row.String(1)].push_back(row.Number(0)); });
  }

  /// The number of an item with that hash, each once; nothing where there is no further one.
  Integer Take(const std::string& hash) {
    const auto found = fNumbers.find(hash);
    if (found == fNumbers.end()) return std::nullopt;
    const std::int64_t number = found->second.front();
    found->second.erase(found->second.begin());
    if (found->second.empty()) fNumbers.erase(found);
    return number;
  }

  /// Those that were not taken.
  std::vector<std::int64_t> Rest() const {
    std::vector<std::int64_t> rest;
    for (const auto& [hash, numbers] : fNumbers) rest.insert(rest.end(), numbers.begin(), numbers.end());
    return rest;
  }

 private:
  std::map<std::string, std::vector<std::int64_t>> fNumbers;
};

Parameters RowOf(std::int64_t hostId, std::int64_t number, Seconds since, StoredItem item) {
  Parameters row = {Integer(hostId),
                    Integer(number),
                    Integer(since),
                    Integer(static_cast<std::int64_t>(item.section)),
                    Text(std::move(item.hash)),
                    Text(std::move(item.content))};
  row.insert(row.end(), item.columns.begin(), item.columns.end());
  return row;
}

const std::vector<std::string>& ItemRowNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all = {"host_id", "number", "since", "section", "hash", "content"};
    all.insert(all.end(), ItemColumns::Names().begin(), ItemColumns::Names().end());
    return all;
  }();
  return names;
}

std::string DescribeMask(const std::string& mask) {
  constexpr std::string_view kKey = "key:";
  if (mask == "none") return "not masked";
  if (mask == "random") return "masked with a random key";
  return "masked with the key " + mask.substr(kKey.size());
}

}  // namespace

Outcome ReportWriter::Write(const Report& report) {
  if (report.Collected() > fNow + kMostAhead) {
    throw Refusal(fmt::format(
        "it was collected at {}, which is more than an hour after now, {}; set the clock of its machine",
        FormatTime(report.Collected()), FormatTime(fNow)));
  }
  Transaction transaction(fDatabase, Transaction::Purpose::kWrite);
  const Outcome outcome = WriteIn(report);
  transaction.Commit();
  return outcome;
}

Text ReportWriter::WriteRepeated(const TimelessText& text) {
  if (text.time > fNow + kMostAhead) return std::nullopt;
  const Query states = {"SELECT host_id, system_name FROM state WHERE text_hash = ?", 2};
  const auto known = FirstRow(fDatabase, states, {Text(text.hash)});
  if (!known) return std::nullopt;
  Transaction transaction(fDatabase, Transaction::Purpose::kWrite);
  const std::optional<Host> host = SelectHost(known->String(1));
  // A host that was renamed no longer has the name that the text says.
  if (!host || host->id != known->Number(0)) return std::nullopt;
  const std::optional<LastReport> last = SelectLast(*host);
  if (!last || last->textHash != text.hash || last->collected >= text.time) return std::nullopt;
  WriteReport(*host, text.time, last->state);
  transaction.Commit();
  return known->OptionalString(1);
}

Outcome ReportWriter::WriteIn(const Report& report) {
  const Host host = LockHost(report.HostName());
  const std::optional<LastReport> last = SelectLast(host);
  const bool isLate = last && report.Collected() <= last->collected;
  if (isLate && IsKnown(host, report)) return Outcome::kKnown;
  CheckMachine(host, report);
  CheckMask(host, report);
  if (isLate) return PutAside(host, report);
  UpdateHost(host, report);
  if (last && last->stateHash == report.Hash()) {
    WriteReport(host, report.Collected(), last->state);
    return Outcome::kUnchanged;
  }
  const std::int64_t state = last ? last->state + 1 : 1;
  const std::optional<EarlierReport> earlier = ReadEarlier(last, report);
  WriteState(host, report, state, WriteItems(host, report));
  WriteReport(host, report.Collected(), state);
  if (earlier) WriteChanges(fDatabase, host.id, *earlier, report);
  return Outcome::kChanged;
}

std::optional<ReportWriter::Host> ReportWriter::SelectHost(const std::string& name) {
  const std::string sql = "SELECT id, machine, mask FROM host WHERE name = ?";
  const auto row = FirstRow(fDatabase, {sql + LockClause(fDatabase.GetDialect()), 3}, {Text(name)});
  if (!row) return std::nullopt;
  return Host{row->Number(0), row->OptionalString(1), row->OptionalString(2)};
}

ReportWriter::Host ReportWriter::LockHost(const std::string& name) {
  if (std::optional<Host> host = SelectHost(name)) return *std::move(host);
  // Another program may insert it at the same time.
  fDatabase.Execute("INSERT INTO host (name) VALUES (?) ON CONFLICT (name) DO NOTHING", {Text(name)});
  std::optional<Host> host = SelectHost(name);
  if (!host)
    throw DatabaseError(fmt::format("the store {} lost the host {}; try again", fDatabase.Name(), name));
  return *std::move(host);
}

std::optional<ReportWriter::LastReport> ReportWriter::SelectLast(const Host& host) {
  const Query query = {
      "SELECT report.collected, report.state, state.hash, state.text_hash FROM report "
      "JOIN state ON state.host_id = report.host_id AND state.number = report.state "
      "WHERE report.host_id = ? ORDER BY report.collected DESC LIMIT 1",
      4};
  const auto row = FirstRow(fDatabase, query, {Integer(host.id)});
  if (!row) return std::nullopt;
  return LastReport{row->Number(0), row->Number(1), row->String(2), row->OptionalString(3)};
}

std::optional<EarlierReport> ReportWriter::ReadEarlier(const std::optional<LastReport>& last,
                                                       const Report& report) {
  if (!last) return std::nullopt;
  std::optional<cli::Inventory> inventory = ReadReportWithin(fDatabase, report.HostName(), last->collected);
  if (!inventory) return std::nullopt;
  return EarlierReport{last->collected, *std::move(inventory)};
}

bool ReportWriter::IsKnown(const Host& host, const Report& report) {
  const Query query = {
      "SELECT 1 FROM report JOIN state ON state.host_id = report.host_id AND state.number = report.state "
      "WHERE report.host_id = ? AND report.collected = ? AND state.hash = ?",
      1};
  return FirstRow(fDatabase, query, {Integer(host.id), Integer(report.Collected()), Text(report.Hash())})
      .has_value();
}

Outcome ReportWriter::PutAside(const Host& host, const Report& report) {
  const std::uint64_t rows = fDatabase.Execute(
      "INSERT INTO late (host_id, collected, hash, loaded, document) VALUES (?, ?, ?, ?, ?) "
      "ON CONFLICT (host_id, collected, hash) DO NOTHING",
      {Integer(host.id), Integer(report.Collected()), Text(report.Hash()), Integer(fNow),
       Text(report.Document())});
  return rows == 0 ? Outcome::kKnown : Outcome::kLate;
}

void ReportWriter::CheckMachine(const Host& host, const Report& report) const {
  const Text machine = report.Machine();
  if (fPermissions.newMachine || !machine || !host.machine || *machine == *host.machine) return;
  throw Refusal(fmt::format(
      "another machine reports as {0}: its id is {1}, and that of {0} in the store is {2}; give one of them "
      "another name, or, if {0} was replaced, load this once with --new-machine",
      report.HostName(), *machine, *host.machine));
}

void ReportWriter::CheckMask(const Host& host, const Report& report) const {
  const Text mask = report.Mask();
  const bool isSame = mask == host.mask && mask != Text("random");
  if (fPermissions.newMask || !mask || !host.mask || isSame) return;
  throw Refusal(fmt::format(
      "its serial numbers are {}, and those of {} in the store are {}, so they cannot be compared; mask them "
      "as before, or load this once with --new-mask",
      DescribeMask(*mask), report.HostName(), DescribeMask(*host.mask)));
}

void ReportWriter::UpdateHost(const Host& host, const Report& report) {
  const Text machine = report.Machine() ? report.Machine() : host.machine;
  const Text mask = report.Mask() ? report.Mask() : host.mask;
  if (machine == host.machine && mask == host.mask) return;
  fDatabase.Execute("UPDATE host SET machine = ?, mask = ? WHERE id = ?", {machine, mask, Integer(host.id)});
}

/// Gives the numbers of the report's items.
std::string ReportWriter::WriteItems(const Host& host, const Report& report) {
  CurrentItems current(fDatabase, host.id);
  const auto last = FirstRow(fDatabase, {"SELECT COALESCE(MAX(number), 0) FROM item WHERE host_id = ?", 1},
                             {Integer(host.id)});
  std::int64_t number = last ? last->Number(0) : 0;
  std::vector<std::int64_t> numbers;
  std::vector<Parameters> added;
  for (StoredItem& item : report.Items()) {
    const Integer kept = current.Take(item.hash);
    numbers.push_back(kept ? *kept : ++number);
    if (!kept) added.push_back(RowOf(host.id, number, report.Collected(), std::move(item)));
  }
  CloseItems(host, current.Rest(), report.Collected());
  InsertRows(fDatabase, "item", ItemRowNames(), added);
  return FormatRanges(numbers);
}

void ReportWriter::CloseItems(const Host& host, const std::vector<std::int64_t>& numbers, Seconds until) {
  ForEachPart(numbers.size(), [&](std::size_t begin, std::size_t end) {
    Parameters values = {Integer(until), Integer(host.id)};
    for (std::size_t at = begin; at < end; ++at) values.emplace_back(Integer(numbers[at]));
    fDatabase.Execute(fmt::format("UPDATE item SET until = ? WHERE host_id = ? AND number IN ({})",
                                  Placeholders(end - begin)),
                      values);
  });
}

void ReportWriter::WriteState(const Host& host, const Report& report, std::int64_t number,
                              const std::string& items) {
  const cli::Inventory& inventory = report.GetInventory();
  const std::vector<std::string> columns = {
      "host_id",    "number", "hash",        "text_hash", "system_name", "origin",  "says_collected",
      "has_kernel", "items",  "controllers", "hubs",      "ports",       "devices", "findings"};
  InsertRows(
      fDatabase, "state", columns,
      {{Integer(host.id), Integer(number), Text(report.Hash()), report.TextHash(), Text(report.HostName()),
        report.OriginText(), Integer(report.SaysCollected() ? 1 : 0), Integer(inventory.Kernel() ? 1 : 0),
        Text(items), Count(inventory.Controllers().size()), Count(inventory.Hubs().size()),
        Count(inventory.Ports().size()), Count(inventory.Devices().size()), Count(report.Findings())}});
}

void ReportWriter::WriteReport(const Host& host, Seconds collected, std::int64_t state) {
  fDatabase.Execute("INSERT INTO report (host_id, collected, loaded, state) VALUES (?, ?, ?, ?)",
                    {Integer(host.id), Integer(collected), Integer(fNow), Integer(state)});
}

}  // namespace store
