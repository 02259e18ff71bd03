#include "cli/command/DiffCommand.h"

#include <fmt/format.h>

#include "cli/command/ComparedFile.h"
#include "cli/command/InventoryFile.h"
#include "cli/diff/Comparability.h"
#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/Selection.h"
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
  return CollectCompared(options.source, options.allowsSuspect, log);
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
                      NameOfList(options.before), NameOfInventory(options.after)));
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
  if (!before.DeviceList() && !after.DeviceList()) {
    RefuseOptionsForLists(options.source, "both files hold saved inventories");
  }
  CheckMasks({before, NameOfList(options.before)}, {after, NameOfInventory(options.after)});
  Align(options, before, after);
  const InventoryDifference difference = Compare(before, after, options.ignored);
  WriteOutput(options.output, Render(options, difference));
  log.Finish();
  return difference.IsEmpty() ? kPrinted : kDifferent;
}

}  // namespace cli
