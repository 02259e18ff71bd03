#include "store/CheckCommand.h"

#include <fmt/format.h>

#include <limits>
#include <memory>

#include "cli/option/CommonOptions.h"
#include "cli/option/Values.h"
#include "cli/policy/PolicyFile.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"
#include "store/DatabaseLocation.h"
#include "store/HostChecks.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/Transaction.h"

namespace store {

namespace {

/// Throws UserError where no host has a report.
HostTotals CheckAll(Database& database, const CheckSettings& settings, HostChecks& checks) {
  const Transaction transaction(database, Transaction::Purpose::kRead);
  const HostTotals totals = CheckHosts(database, settings, checks);
  if (totals.hosts != 0) return totals;
  if (settings.at == kLastReports) {
    throw cli::UserError("the store has no report; usbinfo-store load takes inventories into it");
  }
  throw cli::UserError("no host had a report by then; leave --at out to check the last ones");
}

int StatusOf(const HostTotals& totals) {
  if (totals.failed != 0) return cli::kFailure;
  return totals.refused == 0 ? cli::kPrinted : cli::kNotAllowed;
}

}  // namespace

std::vector<cli::Operand> CheckOperands(CheckOptions& options) {
  return {{.name = "POLICY",
           .help = "A file of rules in USBGuard's language; - is standard input",
           .store = cli::StoreText(options.policy)}};
}

std::vector<cli::Option> CheckOptionTable(CheckOptions& options) {
  return {DatabaseOption(options.database),
          AtOption(options.at),
          cli::FormatOption(options.format, {{"text"}, {"json"}}),
          cli::DefaultTargetOption(options.defaultTarget),
          cli::AllowSuspectOption("Check", options.allowsSuspect),
          cli::OutputOption(options.output)};
}

int RunCheck(const CheckOptions& options, const Clock& clock) {
  cli::RequireDistinctFiles({"--output", cli::IsStandardOutput(options.output) ? "" : options.output},
                            {{"POLICY", options.policy}});
  const cli::Policy policy = cli::ReadPolicy(options.policy, options.defaultTarget);
  const auto database = OpenStore(FindDatabase(options.database, options.output), Access::kExisting);
  const CheckSettings settings = {.policy = policy,
                                  .at = options.at ? options.at->At(clock.Now()) : kLastReports,
                                  .allowsSuspect = options.allowsSuspect};
  const std::unique_ptr<HostChecks> checks =
      options.format == "json" ? HostChecks::AsJson(policy) : HostChecks::AsText(policy);
  const HostTotals totals = CheckAll(*database, settings, *checks);
  cli::WriteOutput(options.output, checks->Take(totals));
  if (totals.failed != 0) {
    PrintMessage(
        fmt::format("{} of {} hosts could not be checked; the output says why", totals.failed, totals.hosts));
  }
  return StatusOf(totals);
}

}  // namespace store
