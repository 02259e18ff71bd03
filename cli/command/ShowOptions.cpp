// The options of `usbinfo show`; see the header.
#include "cli/command/ShowOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "cli/format/OutputFormat.h"
#include "cli/format/TableFormat.h"
#include "cli/option/OptionForms.h"
#include "cli/text/Color.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

std::vector<std::string> FormatNames() {
  std::vector<std::string> names;
  for (const OutputFormat& format : OutputFormats()) names.push_back(format.name);
  return names;
}

bool HasEmptyName(const std::string& list) {
  return list.empty() || list.front() == ',' || list.back() == ',' || list.find(",,") != std::string::npos;
}

std::string CheckRequest(const std::string& request) {
  return HasEmptyName(request) ? "needs class names separated by commas" : std::string();
}

std::string CheckColumns(const std::string& columns) {
  if (HasEmptyName(columns)) return "needs property names separated by commas";
  const std::vector<std::string> known = TableColumnNames();
  for (const std::string& name : SplitAtCommas(columns)) {
    if (std::binary_search(known.begin(), known.end(), name)) continue;
    return fmt::format("{} not in {{{}}}", name, fmt::join(known, ","));
  }
  return std::string();
}

/// What an option parses its text into; refused with the `form` it must have.
template <typename Parsed>
std::function<void(const std::string&)> ParseInto(Parsed& parsed, Parsed (*parse)(const std::string&),
                                                  const char* option, const char* form) {
  return [&parsed, parse, option, form](const std::string& text) {
    parsed = parse(text);
    if (!parsed) throw CLI::ValidationError(option, form);
  };
}

void AddSelectionOptions(CLI::App& app, Selection& selection) {
  app.add_option_function<std::vector<std::string>>(
         "-d",
         [&selection](const std::vector<std::string>& texts) {
           for (const std::string& text : texts) {
             const auto ids = ParseVendorProduct(text);
             if (!ids)
               throw CLI::ValidationError("-d",
                                          "must be [VID]:[PID], hexadecimal numbers of up to four digits");
             selection.ids.push_back(*ids);
           }
         },
         "Print only the devices and hubs of this vendor and\nproduct, in hexadecimal")
      ->type_name("[VID]:[PID]")
      ->allow_extra_args(false);
  app.add_option_function(
         "-s",
         ParseInto(selection.place, ParseBusDevice, "-s", "must be [BUS]:[DEV] or DEV, decimal numbers"),
         "Print only the devices and hubs of this bus and\nnumber, in decimal")
      ->type_name("[BUS]:[DEV]");
  app.add_option_function<std::vector<std::string>>(
         "--class",
         [&selection](const std::vector<std::string>& names) {
           for (const std::string& name : names) selection.classes.push_back(schema::FindClass(name)->id);
         },
         "Print only this class; may be repeated")
      ->type_name("NAME")
      ->allow_extra_args(false)
      ->check(CLI::IsMember(AllClasses()).description(""));
}

void AddMaskOptions(CLI::App& app, Source& source) {
  CLI::Option* const mask =
      app.add_flag("--mask-serials", source.maskSerials, "Print and log hashes in place of serial numbers");
  app.add_option("--mask-key", source.maskKey,
                 "The key to hash with; inventories of one key\ncompare. - is standard input [a new one]")
      ->type_name("FILE")
      ->check(CheckNotEmpty)
      ->needs(mask);
}

/// -t and -j, which are short for a format, and what the formats for people take.
void AddDisplayOptions(CLI::App& app, ShowOptions& options) {
  app.add_flag_callback(
      "-t", [&options] { options.askedFormats.emplace_back("tree"); }, "Like --format tree");
  app.add_flag_callback(
      "-j", [&options] { options.askedFormats.emplace_back("json"); }, "Like --format json");
  app.add_flag("-v,--verbose", options.isVerbose, "In the tree: strings, versions and classes, too");
  app.add_option("--columns", options.columns, "In the table: show these properties, where a class\nhas them")
      ->type_name("A,B,...")
      ->check(CheckColumns);
}

}  // namespace

void AddShowOptions(CLI::App& app, ShowOptions& options) {
  const std::vector<std::string> formats = FormatNames();
  options.format = formats.front();
  AddText(app, "--devices", options.source.devices, "FILE",
          "Use this device list instead of the machine's: a saved\n"
          "/sys/kernel/debug/usb/devices or usb-devices output;\n"
          "- is standard input");
  AddChoice(app, "--format", options.format, "FORMAT", formats, "How to print")
      ->each([&options](const std::string& format) { options.askedFormats.push_back(format); });
  AddDisplayOptions(app, options);
  AddChoice(app, "--color", options.color, "WHEN", ColorNames(), "Colour the tree and the table");
  app.add_option("--request", options.request,
                 "Ask the plug-in for exactly these classes, in this\n"
                 "order, in one request")
      ->type_name("A,B,...")
      ->check(CheckRequest);
  AddText(app, "--system-name", options.source.systemName, "NAME",
          "The system name in the keys [the host name]");
  AddSelectionOptions(app, options.selection);
  AddMaskOptions(app, options.source);
  AddText(app, "--output", options.output, "FILE", "Write there, whole or not at all [standard output]");
  AddText(app, "--plugin", options.source.plugin, "FILE",
          "The plug-in module to load [the one that came along]");
  AddText(app, "--log", options.log, "FILE", "Where the log goes [standard error]");
  AddChoice(app, "--log-level", options.logLevel, "LEVEL", SeverityNames(), "Log from this severity on");
  AddChoice(app, "--log-format", options.logFormat, "FORMAT", {"text", "json"}, "How to log");
}

void CompleteShowOptions(ShowOptions& options) {
  for (const std::string& format : options.askedFormats) {
    if (format == options.askedFormats.front()) continue;
    throw CLI::ValidationError(fmt::format("the formats {} and {} contradict each other: ask for one of them",
                                           options.askedFormats.front(), format));
  }
  if (!options.askedFormats.empty()) options.format = options.askedFormats.front();
  if (options.isVerbose && options.format != "tree") {
    throw CLI::ValidationError("-v is for the tree: leave it out, or use --format tree");
  }
  if (!options.columns.empty() && options.format != "table") {
    throw CLI::ValidationError("--columns is for the table: leave it out, or use --format table");
  }
}

}  // namespace cli
