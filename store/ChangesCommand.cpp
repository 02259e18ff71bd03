#include "store/ChangesCommand.h"

#include <limits>

#include "cli/option/CommonOptions.h"
#include "cli/text/Color.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "store/ChangeList.h"
#include "store/DatabaseLocation.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/ReportReader.h"
#include "store/Transaction.h"

namespace store {

namespace {

std::string Render(const std::vector<StoredComparison>& comparisons, const ChangesOptions& options) {
  if (options.format == "json") return RenderChangesJson(comparisons);
  if (options.format == "csv") return RenderChangesCsv(comparisons);
  const bool isStandardOutput = cli::IsStandardOutput(options.output);
  return RenderChangesText(comparisons, cli::UsesColor(cli::ColorOf(options.color), isStandardOutput));
}

}  // namespace

std::vector<cli::Option> ChangesOptionTable(ChangesOptions& options) {
  return {DatabaseOption(options.database),
          {.names = {"--since"},
           .value = "TIME",
           .help = "Print what was reported since then: 2026-03-15, 2026-03-15T12:00 (UTC), or 1d",
           .manual = R"(Print only the changes that a report collected since then shows, in the forms that
.Fl -at
takes.
Without this option, all that are in the store are printed.)",
           .store = StoreParsed(options.since, Moment::Parse)},
          {.names = {"--host"},
           .value = "HOST",
           .help = "Print the changes of this host",
           .manual = "Print only the changes of this host.",
           .store = StoreHostName(options.host)},
          cli::FormatOption(options.format, {{"text", "as usbinfo diff prints it"},
                                             {"json", "a list of usbinfo.diff/2"},
                                             {"csv", "a line for each item"}}),
          cli::ColorOption(options.color),
          cli::OutputOption(options.output)};
}

int RunChanges(const ChangesOptions& options, const Clock& clock) {
  const auto database = OpenStore(FindDatabase(options.database, options.output), Access::kExisting);
  const Transaction transaction(*database, Transaction::Purpose::kRead);
  if (!options.host.empty() && !HasHost(*database, options.host)) {
    PrintMessage(DescribeNoHost(options.host));
    return cli::kNothingFound;
  }
  const Seconds since = options.since ? options.since->At(clock.Now()) : std::numeric_limits<Seconds>::min();
  const std::vector<StoredComparison> comparisons = ReadChanges(*database, options.host, since);
  cli::WriteOutput(options.output, Render(comparisons, options));
  return comparisons.empty() ? cli::kNothingFound : cli::kPrinted;
}

}  // namespace store
