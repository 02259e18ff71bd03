// `usbinfo diff`: options, reading, printing; see the header.
#include "cli/command/DiffCommand.h"

#include <fmt/format.h>

#include <sstream>
#include <utility>

#include "cli/collect/Collection.h"
#include "cli/command/ExitStatus.h"
#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/FromJson.h"
#include "cli/option/OptionForms.h"
#include "cli/text/Color.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"
#include "host/ILogger.h"

namespace cli {

namespace {

/// Whether a line of `text` begins as those do that begin a device's entry. Without one it is not a list in
/// which no device stands, but something else: taken for an empty machine, it would tell a wrong difference.
bool LooksLikeDeviceList(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (first != std::string::npos && line.compare(first, 2, "T:") == 0) return true;
  }
  return false;
}

Inventory ReadInventory(const std::string& path, const std::string& plugin, LogWriter& log) {
  std::string text = ReadInput(path, "name a file that holds a JSON inventory or a device list");
  const std::string name = NameOfList(path);
  if (LooksLikeJson(text)) return FromJson(text, name);
  if (!LooksLikeDeviceList(text)) {
    throw UserError(fmt::format(
        "{} holds neither a JSON inventory nor a device list; save one with usbinfo --format json", name));
  }
  Source source;
  source.plugin = plugin;
  return CollectFrom(std::move(text), source, AllClasses(), log);
}

std::string Render(const DiffOptions& options, const InventoryDifference& difference) {
  if (options.format == "json") return RenderDiffJson(difference);
  return RenderDiffText(difference, UsesColor(ColorOf(options.color), options.output.empty()));
}

}  // namespace

void AddDiffOptions(CLI::App& command, DiffOptions& options) {
  AddText(command, "OLD", options.before, "FILE",
          "The inventory before: a JSON inventory\nor a device list; - is standard input")
      ->required();
  AddText(command, "NEW", options.after, "FILE", "The inventory after, likewise")->required();
  AddChoice(command, "--format", options.format, "FORMAT", {"text", "json"}, "How to print");
  AddChoice(command, "--color", options.color, "WHEN", ColorNames(), "Colour the text");
  AddText(command, "--output", options.output, "FILE", "Write there, whole or not at all [standard output]");
  AddText(command, "--plugin", options.plugin, "FILE",
          "The plug-in module that reads device lists\n[the one that came along]");
}

int RunDiff(const DiffOptions& options) {
  if (options.before == "-" && options.after == "-") {
    throw UserError("standard input holds one inventory; give a file for OLD or for NEW");
  }
  LogWriter log("", NKESTA20::ILogger::kWarning, LogFormat::kText);
  const Inventory before = ReadInventory(options.before, options.plugin, log);
  const Inventory after = ReadInventory(options.after, options.plugin, log);
  const InventoryDifference difference = Compare(before, after);
  WriteOutput(options.output, Render(options, difference));
  log.Finish();
  return difference.IsEmpty() ? kPrinted : kDifferent;
}

}  // namespace cli
