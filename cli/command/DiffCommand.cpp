#include "cli/command/DiffCommand.h"

#include <fmt/format.h>

#include "cli/collect/Collection.h"
#include "cli/command/ComparedFile.h"
#include "cli/command/Findings.h"
#include "cli/diff/Comparability.h"
#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/Selection.h"
#include "cli/option/UsageError.h"
#include "cli/text/Color.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Input.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

Inventory ReadFile(const std::string& path, const DiffOptions& options, LogWriter& log) {
  return ReadComparedFile(path, options.source, options.allowsSuspect, log);
}

Inventory ReadNew(const DiffOptions& options, LogWriter& log) {
  if (!options.after.empty()) return ReadFile(options.after, options, log);
  Inventory inventory = Collect(options.source, AllClasses(), log);
  if (!options.allowsSuspect) RefuseFindings(inventory, kThisMachine, "compare");
  WarnOfFindings(inventory);
  return inventory;
}

std::string NameOfNew(const DiffOptions& options) {
  return options.after.empty() ? kThisMachine : NameOfList(options.after);
}

/// Saved inventories are not collected again, so options of collecting have no effect on them.
void CheckOptionsForLists(const DiffOptions& options, const Inventory& before, const Inventory& after) {
  if (before.DeviceList() || after.DeviceList()) return;
  RefuseOptions({{"--as-is", options.source.isAsIs},
                 {"--plugin", !options.source.plugin.empty()},
                 {"--system-name", !options.source.systemName.empty()}},
                "is for device lists, and both files hold saved inventories: leave it out");
}

/// Where a part was selected of one inventory, the same part is taken of the other.
void Align(const DiffOptions& options, Inventory& before, Inventory& after) {
  switch (CompareSelections(before, after)) {
    case SelectionToApply::kNone:
      return;
    case SelectionToApply::kToOld:
      before = Select(before, SelectionOf(after).value(), false);
      return;
    case SelectionToApply::kToNew:
      after = Select(after, SelectionOf(before).value(), false);
      return;
    case SelectionToApply::kImpossible:
      throw UserError(
          fmt::format("{} and {} cannot be compared: they were saved with different selections; save both "
                      "with the same options -d, -s and --class",
                      NameOfList(options.before), NameOfNew(options)));
  }
}

std::string Render(const DiffOptions& options, const InventoryDifference& difference) {
  if (options.format == "json") return RenderDiffJson(difference);
  return RenderDiffText(difference, UsesColor(ColorOf(options.color), IsStandardOutput(options.output)));
}

}  // namespace

int RunDiff(const DiffOptions& options) {
  if (options.before == "-" && options.after == "-") {
    throw UserError("standard input holds one inventory; give a file for OLD or for NEW");
  }
  RequireDistinctFiles({"--output", options.output}, {{"OLD", options.before},
                                                      {"NEW", options.after},
                                                      {"--mask-key", options.source.maskKey},
                                                      {"--plugin", options.source.plugin}});
  LogWriter log("", LogSeverity::kWarning, LogFormat::kText);
  Inventory before = ReadFile(options.before, options, log);
  Inventory after = ReadNew(options, log);
  CheckOptionsForLists(options, before, after);
  CheckMasks({before, NameOfList(options.before)}, {after, NameOfNew(options)});
  Align(options, before, after);
  const InventoryDifference difference = Compare(before, after, options.ignored);
  WriteOutput(options.output, Render(options, difference));
  log.Finish();
  return difference.IsEmpty() ? kPrinted : kDifferent;
}

}  // namespace cli
