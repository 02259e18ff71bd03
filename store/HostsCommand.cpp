#include "store/HostsCommand.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "cli/text/ExitStatus.h"
#include "store/DatabaseLocation.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/Transaction.h"

using cli::Importance;

namespace store {

namespace {

struct Error {
  Seconds time;
  std::string reason;
};

/// A row of the query below, by the numbers of its columns.
enum HostColumn : std::size_t {
  kName,
  kMachine,
  kMask,
  kCollected,
  kLoaded,
  kControllers,
  kHubs,
  kPorts,
  kDevices,
  kFindings,
  kReports,
  kLate,
  kHostColumns
};

/// A row for what never gave a report.
Row EmptyRow(const std::string& name) {
  std::vector<Text> cells(kHostColumns);
  cells[kName] = name;
  return Row(std::move(cells));
}

/// The hosts of the store, and those that gave nothing but errors.
std::vector<Row> SelectHosts(Database& database, const std::map<std::string, Error>& errors) {
  const Query query = {
      "SELECT host.name, host.machine, host.mask, report.collected, report.loaded, state.controllers, "
      "state.hubs, state.ports, state.devices, state.findings, "
      "(SELECT COUNT(*) FROM report AS each_report WHERE each_report.host_id = host.id), "
      "(SELECT COUNT(*) FROM late WHERE late.host_id = host.id) "
      "FROM host "
      "LEFT JOIN report ON report.host_id = host.id AND report.collected = "
      "(SELECT MAX(last.collected) FROM report AS last WHERE last.host_id = host.id) "
      "LEFT JOIN state ON state.host_id = host.id AND state.number = report.state",
      kHostColumns};
  std::vector<Row> rows = Rows(database, query, {});
  std::set<std::string> names;
  for (const Row& row : rows) names.insert(row.String(kName));
  for (const auto& [name, error] : errors) {
    if (names.count(name) == 0) rows.push_back(EmptyRow(name));
  }
  // Databases sort texts by their own rules.
  std::sort(rows.begin(), rows.end(),
            [](const Row& left, const Row& right) { return left.String(kName) < right.String(kName); });
  return rows;
}

/// Why a node gave no report when it was asked last, by the host that it is, or was named for.
std::map<std::string, Error> SelectFailures(Database& database) {
  std::map<std::string, Error> failures;
  database.Select({"SELECT COALESCE(host.name, node.name), tried, reason FROM node "
                   "LEFT JOIN host ON host.id = node.host_id WHERE reason IS NOT NULL ORDER BY tried",
                   3},
                  {}, [&](const Row& row) {
                    failures[row.String(0)] = {row.Number(1), row.String(2)};
                  });
  return failures;
}

/// The last report of each host that was refused, or could not be had.
std::map<std::string, Error> SelectErrors(Database& database) {
  std::map<std::string, Error> errors = SelectFailures(database);
  database.Select(
      {"SELECT host, last_time, reason FROM refused WHERE host IS NOT NULL ORDER BY last_time", 3}, {},
      [&](const Row& row) {
        const Error refusal = {row.Number(1), row.String(2)};
        Error& last = errors.try_emplace(row.String(0), refusal).first->second;
        if (last.time < refusal.time) last = refusal;
      });
  return errors;
}

/// What was refused since the last report was loaded.
Cell LastError(const Row& row, const std::map<std::string, Error>& errors) {
  const auto found = errors.find(row.String(kName));
  const bool isOver =
      found == errors.end() || (!row.IsNull(kLoaded) && found->second.time < row.Number(kLoaded));
  return isOver ? Cell() : Cell(found->second.reason);
}

bool IsListed(const Row& row, const HostsOptions& options, Seconds now) {
  return !options.silentFor || row.IsNull(kCollected) || row.Number(kCollected) < now - *options.silentFor;
}

std::vector<Cell> CellsOf(const Row& row, const std::map<std::string, Error>& errors) {
  return {row.String(kName),
          TimeCell(row.OptionalNumber(kCollected)),
          CellOf(row.OptionalNumber(kReports)),
          CellOf(row.OptionalNumber(kControllers)),
          CellOf(row.OptionalNumber(kHubs)),
          CellOf(row.OptionalNumber(kPorts)),
          CellOf(row.OptionalNumber(kDevices)),
          CellOf(row.OptionalNumber(kLate)),
          CellOf(row.OptionalNumber(kFindings)),
          CellOf(row.OptionalString(kMask)),
          CellOf(row.OptionalString(kMachine)),
          TimeCell(row.OptionalNumber(kLoaded)),
          LastError(row, errors)};
}

ResultList EmptyList() {
  return ResultList("hosts", {{.name = "host", .importance = Importance::kIdentifier},
                              {.name = "lastReport", .importance = Importance::kMain},
                              {.name = "reports", .isNumber = true},
                              {.name = "controllers", .isNumber = true, .isForPrograms = true},
                              {.name = "hubs", .importance = Importance::kMinor, .isNumber = true},
                              {.name = "ports", .importance = Importance::kMinor, .isNumber = true},
                              {.name = "devices", .isNumber = true},
                              {.name = "late", .importance = Importance::kMinor, .isNumber = true},
                              {.name = "suspect", .importance = Importance::kMinor, .isNumber = true},
                              {.name = "mask", .isForPrograms = true},
                              {.name = "machine", .isForPrograms = true},
                              {.name = "lastLoaded", .isForPrograms = true},
                              {.name = "lastError"}});
}

}  // namespace

std::vector<cli::Option> HostsOptionTable(HostsOptions& options) {
  return WithListOptions({DatabaseOption(options.database),
                          {.names = {"--silent-for"},
                           .value = "DURATION",
                           .help = "List hosts without a report for so long, such as 2d",
                           .manual = R"(List only the hosts whose last report was collected longer ago than
this: a number and
.Cm s , m , h , d
or
.Cm w ,
such as
.Li 2d .)",
                           .store = StoreParsed(options.silentFor, ParseDuration)}},
                         options.list);
}

int RunHosts(const HostsOptions& options, const Clock& clock) {
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kExisting);
  const Transaction transaction(*database, Transaction::Purpose::kRead);
  const std::map<std::string, Error> errors = SelectErrors(*database);
  ResultList list = EmptyList();
  for (const Row& row : SelectHosts(*database, errors)) {
    if (!IsListed(row, options, clock.Now())) continue;
    list.AddRow(CellsOf(row, errors));
  }
  if (!list.IsEmpty() || options.list.format != "table") Print(list, options.list);
  if (!list.IsEmpty()) return cli::kPrinted;
  PrintMessage(options.silentFor ? "every host has reported since then"
                                 : "the store has no host; usbinfo-store load takes inventories into it");
  return cli::kNothingFound;
}

}  // namespace store
