#include "cli/command/WatchCommand.h"

#include <optional>
#include <utility>

#include "cli/command/ComparedFile.h"
#include "cli/command/InventoryFile.h"
#include "cli/diff/Comparability.h"
#include "cli/model/OriginText.h"
#include "cli/policy/PolicyFile.h"
#include "cli/text/Color.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Input.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"
#include "cli/watch/Clock.h"
#include "cli/watch/PolicyAudit.h"
#include "cli/watch/UdevMonitor.h"
#include "cli/watch/WatchReport.h"
#include "cli/watch/Watcher.h"
#include "system/StopSignals.h"

namespace cli {

namespace {

std::optional<Inventory> ReadBaseline(const WatchOptions& options, LogWriter& log) {
  if (options.baseline.empty()) return std::nullopt;
  return ReadComparedFile(options.baseline, options.source, options.allowsSuspect, log);
}

std::optional<PolicyAudit> ReadAudit(const WatchOptions& options) {
  if (options.policy.empty()) return std::nullopt;
  return PolicyAudit(ReadPolicy(options.policy, options.defaultTarget));
}

void CheckBaseline(const WatchOptions& options, const Inventory& baseline, const Inventory& now) {
  const std::string name = NameOfList(options.baseline);
  CheckMasks({baseline, name}, {now, kThisMachine});
  if (CompareSelections(baseline, now) == SelectionToApply::kNone) return;
  throw UserError(DescribePart(name));
}

void Print(const WatchOptions& options, const WatchReport& report) {
  const bool isText = options.format == "text";
  WriteStandardOutput(isText ? RenderWatchText(report, UsesColor(ColorOf(options.color), true))
                             : RenderWatchJson(report));
}

}  // namespace

int RunWatch(const WatchOptions& options) {
  LogWriter log("", LogSeverity::kWarning, LogFormat::kText);
  std::optional<Inventory> baseline = ReadBaseline(options, log);
  std::optional<PolicyAudit> audit = ReadAudit(options);
  Source source = options.source;
  source.makesHashes = audit && audit->NeedsHashes();
  const sys::StopSignals signals;
  // Before the machine is looked at, so that nothing happens unseen in between.
  UdevMonitor events(signals.Get());
  const SystemClock clock;
  const auto collect = [&] { return CollectCompared(source, options.allowsSuspect, log); };
  Inventory now = collect();
  if (baseline) CheckBaseline(options, *baseline, now);

  Watcher watcher({.events = events,
                   .clock = clock,
                   .collect = collect,
                   .print = [&](const WatchReport& report) { Print(options, report); },
                   .audit = audit ? &*audit : nullptr},
                  options.settings, baseline ? std::move(*baseline) : now);
  if (baseline || audit) watcher.Compare(std::move(now));
  return watcher.Follow() ? kPrinted : kFailure;
}

}  // namespace cli
