#include "cli/command/ShowOptions.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "cli/command/ClassNames.h"
#include "cli/command/CommonOptions.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/TableFormat.h"
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

void SetPlace(std::optional<BusDevice>& place, const std::string& text) {
  place = ParseBusDevice(text);
  if (!place) throw UsageError("must be [BUS]:[DEV] or DEV, decimal numbers");
}

std::vector<Option> SourceOptions(Source& source) {
  return {{.names = {"--devices"},
           .value = "FILE",
           .help = "Read this device list (a copy of /sys/kernel/debug/usb/devices or the output of "
                   "usb-devices) or saved JSON inventory; - is standard input",
           .defaultValue = "this machine's list",
           .manual = R"(Read this device list instead of the machine's: a copy of
.Pa /sys/kernel/debug/usb/devices
or the output of
.Xr usb-devices 1 .
A JSON inventory, as
.Fl -format Cm json
prints it, is read as well.
Nothing of this machine is read then, and no command is run.
A single dash is standard input.)",
           .store = StoreText(source.devices)},
          {.names = {"--no-limits"},
           .help = "Take lists that are larger than any machine's",
           .manual = R"(Take lists beyond the limits that no machine exceeds.
Such a list can take minutes and gigabytes of memory.)",
           .store = StoreTrue(source.noLimits)},
          {.names = {"--system-name"},
           .value = "NAME",
           .help = "The system name in the keys",
           .defaultValue = "the host name, or the name of the list's file",
           .manual = R"(The name of the system in the instances' keys.
The default is the host name; of a list that
.Fl -devices
names, the file's name without
.Pa .txt ,
.Pa .list
or
.Pa .log ,
and
.Li unknown
where the list comes from a pipe.
A JSON inventory keeps its own.)",
           .store = StoreText(source.systemName)}};
}

StoreValue StoreFormat(ShowOptions& options, std::string format) {
  return
      [&options, format = std::move(format)](const std::string&) { options.askedFormats.push_back(format); };
}

Option ColumnsOption(std::vector<std::string>& columns) {
  return {.names = {"--columns"},
          .value = "A,B,...",
          .help = "Show these properties in the tables, where a class has them",
          .choices = ChoicesOf(TableColumnNames()),
          .isList = true,
          .manual = R"(Show these properties in the tables, in this order; a class shows those that it
has.
Capital and small letters are the same.
Each is one of)",
          .store = [&columns](const std::string& list) {
            columns.clear();
            for (const std::string& name : SplitList(list, "property names")) {
              columns.push_back(NameOf(name, TableColumnNames()));
            }
          }};
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
           .help = "Show strings, versions and serial numbers in the tree",
           .manual = "Show each device's strings, versions and serial number in the tree.",
           .store = StoreTrue(options.isVerbose)},
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
Full names, as
.Cm KALDO_USBPort ,
are understood as well; capital and small letters are the same.
It is one of)",
       .store = [&selection](const std::string& name) { selection.classes.push_back(ClassOfName(name)); }},
      {.names = {"-d"},
       .value = "[VID]:[PID]",
       .help = "Print only the devices and hubs of this vendor and product, in hexadecimal",
       .isRepeatable = true,
       .manual = R"(Print only the hubs and devices with this vendor and product, hexadecimal
numbers, as
.Xr lsusb 8
does.
May be given more than once, for any of them.)",
       .store = [&selection](const std::string& text) { AddIds(selection.ids, text); }},
      {.names = {"-s"},
       .value = "[BUS]:[DEV]",
       .help = "Print only the devices and hubs of this bus and number, in decimal",
       .manual = R"(Print only the hubs and devices on this bus and with this device number, decimal
numbers.)",
       .store = [&selection](const std::string& text) { SetPlace(selection.place, text); }}};
}

Option RequestOption(std::vector<std::string>& request) {
  return {.names = {"--request"},
          .value = "A,B,...",
          .help = "Ask the plug-in for exactly these classes, in this order, in one request",
          .choices = ChoicesOf(AllClasses()),
          .isList = true,
          .manual = R"(Ask the plug-in for exactly these classes, in this order, in one request.
The associations link what was asked for before them.
The names are handed over as they are; what is printed is of one of)",
          .store = [&request](const std::string& list) { request = SplitList(list, "class names"); }};
}

std::vector<Option> MaskOptions(Source& source) {
  return {{.names = {"--mask-serials"},
           .help = "Print and log hashes in place of serial numbers",
           .manual = R"(Print and log hashes in place of serial numbers.
Equal serial numbers have equal hashes under one key.
Root hubs keep their serial number, which is the address of their controller.
Hashes made by version 1.0.0 do not compare with these.)",
           .store = StoreTrue(source.maskSerials)},
          {.names = {"--mask-key"},
           .value = "FILE",
           .help = "The key to hash with, so that inventories with the same key compare; - is standard input",
           .defaultValue = "a new one for every run",
           .requiredOption = "--mask-serials",
           .manual = R"(Read the key for
.Fl -mask-serials
from this file, so that inventories with the same key can be compared.
A single dash is standard input.
The key has 16 bytes or more, which nobody can guess, and nobody else may read
the file;
.Ql head -c 32 /dev/urandom > key
makes one.
The default is a new key for every run.)",
           .store = StoreText(source.maskKey)}};
}

Option PluginOption(std::string& path) {
  return {.names = {"--plugin"},
          .value = "FILE",
          .help = "The plug-in module to load",
          .defaultValue = "the installed one",
          .manual = "Load this plug-in module instead of the installed one.",
          .store = StoreText(path)};
}

std::vector<Option> LogOptions(ShowOptions& options) {
  const std::vector<Choice> severities = ChoicesOf(SeverityNames());
  const std::vector<Choice> formats = {{"text"}, {"json", "one object per line"}};
  return {{.names = {"--log"},
           .value = "FILE",
           .help = "Write the log to this file",
           .defaultValue = "standard error",
           .manual = R"(Write the plug-in's log there instead of to standard error; to no file that is
read or written otherwise.)",
           .store = StoreText(options.log)},
          {.names = {"--log-level"},
           .value = "LEVEL",
           .help = "Log from this severity on",
           .defaultValue = options.logLevel,
           .choices = severities,
           .manual = "Log lines of this severity and graver ones:",
           .store = StoreChoice(options.logLevel, severities)},
          {.names = {"--log-format"},
           .value = "FORMAT",
           .help = "How to write the log",
           .defaultValue = options.logFormat,
           .choices = formats,
           .manual = "How to write the log:",
           .store = StoreChoice(options.logFormat, formats)}};
}

void Append(std::vector<Option>& table, const std::vector<Option>& options) {
  table.insert(table.end(), options.begin(), options.end());
}

}  // namespace

std::vector<Option> ShowOptionTable(ShowOptions& options) {
  options.format = OutputFormats().front().name;
  std::vector<Option> table = SourceOptions(options.source);
  Append(table, FormatOptions(options));
  Append(table, SelectionOptions(options.selection));
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
  if (!options.columns.empty() && options.format != "table") {
    throw UsageError("--columns is for the table: leave it out, or use --format table");
  }
}

}  // namespace cli
