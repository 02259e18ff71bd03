#include "cli/command/ShowOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "cli/command/ClassNames.h"
#include "cli/command/SourceOptions.h"
#include "cli/format/DeviceColumns.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/TableFormat.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"
#include "cli/text/LogWriter.h"

namespace cli {

namespace {

std::vector<Choice> Formats() {
  std::vector<Choice> formats;
  for (const OutputFormat& format : OutputFormats()) formats.push_back({format.name, format.description});
  return formats;
}

void AddIds(std::vector<VendorProduct>& ids, const std::string& text) {
  const std::optional<VendorProduct> parsed = ParseVendorProduct(text);
  if (!parsed) throw UsageError("must be [VID]:[PID], hexadecimal numbers of up to four digits");
  ids.push_back(*parsed);
}

void SetPlace(Selection& selection, const std::string& text) {
  selection.place = ParseBusDevice(text);
  if (!selection.place) selection.name = ParseKernelName(text);
  if (selection.place || selection.name) return;
  throw UsageError("must be [BUS]:[DEV] or DEV, decimal numbers, or a name such as 1-3.1");
}

StoreValue StoreFormat(ShowOptions& options, std::string format) {
  return
      [&options, format = std::move(format)](const std::string&) { options.askedFormats.push_back(format); };
}

std::vector<Choice> ColumnChoices() {
  std::vector<Choice> choices = ChoicesOf(DeviceColumnNames());
  const std::vector<Choice> properties = ChoicesOf(PropertyNames());
  choices.insert(choices.end(), properties.begin(), properties.end());
  return choices;
}

Option ColumnsOption(std::vector<std::string>& columns) {
  return {.names = {"--columns"},
          .value = "A,B,...",
          .help = "Show these columns in the table; with --class, these properties",
          .choices = ColumnChoices(),
          .isList = true,
          .manual = R"(Show these columns in the table, in this order.
With
.Fl -class ,
they are properties, the names in capitals, and each class shows those that it has.
Case does not matter.
Each name is one of)",
          .store = [&columns](const std::string& list) { columns = SplitList(list, "names of columns"); }};
}

std::vector<Option> FormatOptions(ShowOptions& options) {
  const std::vector<Choice> formats = Formats();
  const StoreValue storeFormat = StoreChoice(options.format, formats);
  const auto addFormat = [&options, storeFormat](const std::string& format) {
    storeFormat(format);
    options.askedFormats.push_back(format);
  };
  return {{.names = {"--format"},
           .value = "FORMAT",
           .help = "How to print",
           .defaultValue = options.format,
           .choices = formats,
           .manual = "How to print:",
           .store = addFormat},
          {.names = {"-t"},
           .help = "Short for --format tree",
           .manual = "Short for the format tree.",
           .store = StoreFormat(options, "tree")},
          {.names = {"-j"},
           .help = "Short for --format json",
           .manual = "Short for the format json.",
           .store = StoreFormat(options, "json")},
          {.names = {"-v", "--verbose"},
           .help = "Show more of each device in the tree, and every free socket",
           .manual = R"(Show each device's strings, version, power, drivers, number and files in
.Pa /dev
in the tree, and every free socket in a row of its own.)",
           .store = StoreTrue(options.isVerbose)},
          {.names = {"--compact"},
           .help = "Print JSON on one line",
           .manual = "Print the format json on one line, for programs that read a document per line.",
           .store = StoreTrue(options.isCompact)},
          {.names = {"--with-serials"},
           .help = "Print serial numbers in metrics, too",
           .manual = R"(With the format prometheus, print serial numbers, too, as a label.
The other formats that show devices have them without this option.)",
           .store = StoreTrue(options.hasSerials)},
          ColumnsOption(options.columns),
          ColorOption(options.color)};
}

std::vector<Option> SelectionOptions(Selection& selection) {
  return {
      {.names = {"--class"},
       .value = "NAME",
       .help = "Print only this class",
       .choices = ChoicesOf(ShortClassNames()),
       .isRepeatable = true,
       .manual = R"(Print only the instances of this class.
May be given more than once.
Full names such as
.Cm KALDO_USBPort
are accepted as well; case does not matter.
The name is one of)",
       .store = [&selection](const std::string& name) { selection.classes.push_back(ClassOfName(name)); }},
      {.names = {"-d"},
       .value = "[VID]:[PID]",
       .help = "Print only the devices and hubs of this vendor and product, in hexadecimal",
       .isRepeatable = true,
       .manual = R"(Print only the hubs and devices with this vendor and product, in hexadecimal, as
in
.Xr lsusb 8 .
The vendor or the product may be missing.
If the option is repeated, an item must match one of the values.)",
       .store = [&selection](const std::string& text) { AddIds(selection.ids, text); }},
      {.names = {"-s"},
       .value = "[BUS]:[DEV]",
       .help =
           "Print only the devices and hubs of this bus and number, in decimal, or of this name, as 1-3.1",
       .manual = R"(Print only the hubs and devices on this bus and with this device number, in
decimal, or with this name of the kernel's, such as
.Li 1-3.1
or
.Li usb1 .)",
       .store = [&selection](const std::string& text) { SetPlace(selection, text); }}};
}

std::vector<Option> OccupancyOptions(ShowOptions& options) {
  return {{.names = {"--occupied"},
           .help = "Show only what is plugged in",
           .manual = "Show only what is plugged in, in formats for people and spreadsheets.",
           .store = StoreTrue(options.isOccupied)},
          {.names = {"--free"},
           .help = "Show only the free sockets",
           .manual = "Show only the free sockets, in formats for people and spreadsheets.",
           .store = StoreTrue(options.isFree)}};
}

Option RequestOption(std::vector<std::string>& request) {
  return {.names = {"--request"},
          .value = "A,B,...",
          .help = "Ask the plug-in for exactly these classes, in this order, in one request",
          .choices = ChoicesOf(AllClasses()),
          .isList = true,
          .manual = R"(Ask the plug-in for exactly these classes, in this order, in one request.
The associations link the instances of the classes before them.
The names are passed to the plug-in unchanged.
Each class that it serves is one of)",
          .store = [&request](const std::string& list) { request = SplitList(list, "class names"); }};
}

std::vector<Option> LogOptions(ShowOptions& options) {
  const std::vector<Choice> severities = ChoicesOf(SeverityNames());
  const std::vector<Choice> formats = {{"text"}, {"json", "one object per line"}};
  return {{.names = {"--log"},
           .value = "FILE",
           .help = "Write the log to this file",
           .defaultValue = "standard error",
           .manual = R"(Write the plug-in's log to this file instead of standard error.
It must not be a file that another option names.)",
           .store = StoreText(options.log)},
          {.names = {"--log-level"},
           .value = "LEVEL",
           .help = "Log lines of this severity and higher",
           .defaultValue = options.logLevel,
           .choices = severities,
           .manual = "Log lines of this severity and higher:",
           .store = StoreChoice(options.logLevel, severities)},
          {.names = {"--log-format"},
           .value = "FORMAT",
           .help = "How to write the log",
           .defaultValue = options.logFormat,
           .choices = formats,
           .manual = "How to write the log:",
           .store = StoreChoice(options.logFormat, formats)}};
}

void Append(std::vector<Option>& table, std::vector<Option> options) {
  std::move(options.begin(), options.end(), std::back_inserter(table));
}

void CheckSource(const Source& source) {
  if (source.devices.empty() || !source.way) return;
  throw UsageError("--source is for this machine: leave it or --devices out");
}

void CheckFormatOfWhole(const ShowOptions& options) {
  const char* const whole = FindOutputFormat(options.format).ofWhole;
  if (whole == nullptr || !options.selection.IsSet()) return;
  throw UsageError(fmt::format("the format {} prints {}: leave {} out, or use another format", options.format,
                               whole, Describe(options.selection)));
}

std::vector<std::string> FormatsWithOccupancy() {
  std::vector<std::string> names;
  for (const OutputFormat& format : OutputFormats()) {
    if (format.takesOccupancy) names.push_back(format.name);
  }
  return names;
}

void CompleteOccupancy(ShowOptions& options) {
  if (!options.isOccupied && !options.isFree) return;
  if (options.isOccupied && options.isFree) {
    throw UsageError("--occupied and --free contradict each other: leave one of them out");
  }
  const char* const option = options.isFree ? "--free" : "--occupied";
  if (!FindOutputFormat(options.format).takesOccupancy) {
    throw UsageError(fmt::format("{} is for the formats {}: leave it out, or use one of them", option,
                                 fmt::join(FormatsWithOccupancy(), ", ")));
  }
  options.selection.occupancy = options.isFree ? Occupancy::kFree : Occupancy::kOccupied;
}

void CheckRowsOfCsv(const ShowOptions& options) {
  const auto hasRows = [](ClassId classId) {
    return classId == ClassId::kHub || classId == ClassId::kDevice;
  };
  const std::vector<ClassId>& classes = options.selection.classes;
  if (options.format == "csv" && !std::all_of(classes.begin(), classes.end(), hasRows)) {
    throw UsageError("csv has rows for hubs and devices alone: leave --class out, or use --format table");
  }
}

void CompleteColumns(ShowOptions& options) {
  if (options.columns.empty()) return;
  if (options.format != "table") {
    throw UsageError("--columns is for the table: leave it out, or use --format table");
  }
  const std::vector<std::string> known =
      options.selection.classes.empty() ? DeviceColumnNames() : PropertyNames();
  try {
    for (std::string& column : options.columns) column = NameOf(column, known);
  } catch (const UsageError& error) {
    const char* const hint = options.selection.classes.empty() ? "; properties need --class" : "";
    throw UsageError(fmt::format("--columns: {}{}", error.what(), hint));
  }
}

}  // namespace

std::vector<Option> ShowOptionTable(ShowOptions& options) {
  options.format = OutputFormats().front().name;
  std::vector<Option> table = SourceOptions(options.source);
  Append(table, FormatOptions(options));
  Append(table, SelectionOptions(options.selection));
  Append(table, OccupancyOptions(options));
  table.push_back(RequestOption(options.request));
  Append(table, MaskOptions(options.source));
  table.push_back(OutputOption(options.output));
  table.push_back(PluginOption(options.source.plugin));
  Append(table, LogOptions(options));
  return table;
}

void CompleteShowOptions(ShowOptions& options) {
  for (const std::string& format : options.askedFormats) {
    if (format == options.askedFormats.front()) continue;
    throw UsageError(fmt::format("the formats {} and {} contradict each other: ask for one of them",
                                 options.askedFormats.front(), format));
  }
  if (!options.askedFormats.empty()) options.format = options.askedFormats.front();
  if (options.isVerbose && options.format != "tree") {
    throw UsageError("-v is for the tree: leave it out, or use --format tree");
  }
  if (options.isCompact && options.format != "json") {
    throw UsageError("--compact is for JSON: leave it out, or use --format json");
  }
  if (options.hasSerials && options.format != "prometheus") {
    throw UsageError("--with-serials is for metrics: leave it out, or use --format prometheus");
  }
  CheckRowsOfCsv(options);
  CompleteColumns(options);
  CheckSource(options.source);
  CheckFormatOfWhole(options);
  CompleteOccupancy(options);
}

}  // namespace cli
