#include "store/UpkeepCommand.h"

#include <optional>

#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"
#include "store/DatabaseLocation.h"
#include "store/HostUpkeep.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/Schema.h"

namespace store {

namespace {

Cell NumberCell(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

/// For a command that needs no store, so that none can be found is no error.
void SpareStore(const std::string& output) {
  std::optional<DatabaseLocation> location;
  try {
    location = FindDatabase("");
  } catch (const cli::UserError&) {
    return;
  }
  RequireDistinctOutput(*location, output);
}

int ReportNoHost(const std::string& host) {
  PrintMessage(DescribeNoHost(host));
  return cli::kNothingFound;
}

}  // namespace

std::vector<cli::Operand> ForgetOperands(ForgetOptions& options) {
  return {
      {.name = "HOST", .help = "The name of the host", .isText = true, .store = StoreHostName(options.host)}};
}

std::vector<cli::Option> ForgetOptionTable(ForgetOptions& options) {
  return WithListOptions({DatabaseOption(options.database)}, options.list);
}

int RunForget(const ForgetOptions& options) {
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kExisting);
  const std::optional<std::uint64_t> reports = Forget(*database, options.host);
  if (!reports) return ReportNoHost(options.host);
  ResultList list("forgotten", {{.name = "host"}, {.name = "reports", .isNumber = true}});
  list.AddRow({options.host, NumberCell(*reports)});
  Print(list, options.list);
  return cli::kPrinted;
}

std::vector<cli::Operand> RenameOperands(RenameOptions& options) {
  return {
      {.name = "OLD", .help = "The name of the host", .isText = true, .store = StoreHostName(options.before)},
      {.name = "NEW", .help = "Its new name", .isText = true, .store = StoreHostName(options.after)}};
}

std::vector<cli::Option> RenameOptionTable(RenameOptions& options) {
  return WithListOptions({DatabaseOption(options.database)}, options.list);
}

int RunRename(const RenameOptions& options) {
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kExisting);
  if (!Rename(*database, options.before, options.after)) return ReportNoHost(options.before);
  ResultList list("renamed", {{.name = "host"}, {.name = "before"}});
  list.AddRow({options.after, options.before});
  Print(list, options.list);
  return cli::kPrinted;
}

std::vector<cli::Option> PruneOptionTable(PruneOptions& options) {
  return WithListOptions({DatabaseOption(options.database),
                          {.names = {"--keep"},
                           .value = "DURATION",
                           .help = "Keep what was reported in this time, such as 400d",
                           .manual = R"(Keep what is needed to show any time since so long ago: a number and
.Cm s , m , h , d
or
.Cm w .
The last report of each host is always kept.)",
                           .store = StoreParsed(options.keep, ParseDuration)}},
                         options.list);
}

void CheckPrune(const PruneOptions& options) {
  if (!options.keep) throw cli::UsageError("--keep is missing");
}

int RunPrune(const PruneOptions& options, const Clock& clock) {
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kExisting);
  const Pruned pruned = Prune(*database, clock.Now() - *options.keep);
  PrintCounts("pruned",
              {{"reports", pruned.reports},
               {"items", pruned.items},
               {"late", pruned.late},
               {"refused", pruned.refused}},
              options.list);
  return cli::kPrinted;
}

std::vector<cli::Option> MigrateOptionTable(MigrateOptions& options) {
  return WithListOptions({DatabaseOption(options.database)}, options.list);
}

int RunMigrate(const MigrateOptions& options) {
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kAny);
  const std::optional<int> before = FindVersion(*database);
  Migrate(*database);
  ResultList list("migrated", {{.name = "version", .isNumber = true}, {.name = "before", .isNumber = true}});
  list.AddRow({NumberCell(kSchemaVersion), before ? Cell(std::int64_t{*before}) : Cell()});
  Print(list, options.list);
  return cli::kPrinted;
}

std::vector<cli::Option> SchemaOptionTable(SchemaOptions& options) {
  const std::vector<cli::Choice> dialects = {{"sqlite"}, {"postgresql"}};
  return {{.names = {"--dialect"},
           .value = "DATABASE",
           .help = "For which database",
           .defaultValue = options.dialect,
           .choices = dialects,
           .manual = "For which database:",
           .store = cli::StoreChoice(options.dialect, dialects)},
          cli::OutputOption(options.output)};
}

int RunSchema(const SchemaOptions& options) {
  SpareStore(options.output);
  cli::WriteOutput(options.output,
                   SchemaSql(options.dialect == "sqlite" ? Dialect::kSqlite : Dialect::kPostgresql));
  return cli::kPrinted;
}

}  // namespace store
