#include "store/CommonOptions.h"

#include <utility>

#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"
#include "cli/text/Color.h"
#include "cli/text/Output.h"
#include "cli/text/Surface.h"
#include "store/HostName.h"

using cli::Option;

namespace store {

Option DatabaseOption(std::string& database) {
  return {.names = {"--db"},
          .value = "DATABASE",
          .help = "The store: a FILE, sqlite://FILE or postgresql://...",
          .manual = R"(The store: the path of an SQLite database, also as
.Cm sqlite:// Ns Ar FILE ,
or a PostgreSQL database as
.Cm postgresql:// Ns Ar USER Ns Cm @ Ns Ar HOST Ns Cm / Ns Ar NAME .
Without this option, it is the value of the environment variable
.Ev USBINFO_STORE_DB ,
and if that is not set,
.Pa usbinfo/store.db
in the folder that
.Ev XDG_DATA_HOME
names, or in
.Pa ~/.local/share .)",
          .store = cli::StoreText(database)};
}

Option AtOption(std::optional<Moment>& at) {
  return {.names = {"--at"},
          .value = "TIME",
          .help = "What was then: 2026-03-15, 2026-03-15T12:00 (UTC), or 2d for two days ago",
          .manual = R"(Show what was reported at that time: the beginning of a day such as
.Li 2026-03-15 ,
a time such as
.Li 2026-03-15T12:00
or
.Li 2026-03-15T12:00:30Z ,
both in UTC, or how long ago, such as
.Li 90s , 30m , 12h , 2d
or
.Li 8w .)",
          .store = StoreParsed(at, Moment::Parse)};
}

std::function<void(const std::string&)> StoreHostName(std::string& target) {
  return [&target](const std::string& name) {
    if (!IsHostName(name)) throw cli::UsageError("is no name of a host");
    target = name;
  };
}

std::vector<Option> WithListOptions(std::vector<Option> table, ListOptions& options) {
  table.push_back(cli::FormatOption(options.format, cli::ChoicesOf(ResultList::Formats())));
  table.push_back(cli::OutputOption(options.output));
  return table;
}

void Print(const ResultList& list, const ListOptions& options) {
  const cli::Surface surface = cli::SurfaceOf(cli::IsStandardOutput(options.output), cli::Color::kAuto);
  cli::WriteOutput(options.output, list.Render(options.format, surface));
}

void PrintCounts(const std::string& name, const std::vector<NamedCount>& counts, const ListOptions& options) {
  std::vector<ResultColumn> columns;
  std::vector<Cell> cells;
  for (const NamedCount& count : counts) {
    columns.push_back({.name = count.name, .isNumber = true});
    cells.emplace_back(static_cast<std::int64_t>(count.number));
  }
  ResultList list(name, std::move(columns));
  list.AddRow(std::move(cells));
  Print(list, options);
}

}  // namespace store
