#include "cli/command/DiffOptions.h"

#include <utility>

#include "cli/command/SourceOptions.h"
#include "cli/diff/PropertyComparison.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"

namespace cli {

namespace {

Option IgnoreOption(std::vector<std::string>& ignored) {
  return {.names = {"--ignore"},
          .value = "PROPERTY",
          .help = "Do not compare this property",
          .choices = ChoicesOf(ComparedProperties()),
          .isRepeatable = true,
          .manual = R"(Do not compare this property.
May be given more than once; case does not matter.
The name is one of)",
          .store = [&ignored](const std::string& name) {
            ignored.push_back(NameOf(name, ComparedProperties()));
          }};
}

}  // namespace

std::vector<Operand> DiffOperands(DiffOptions& options) {
  return {{.name = "OLD",
           .help = "The old inventory: a JSON inventory or a device list; - is standard input",
           .store = StoreText(options.before)},
          {.name = "NEW",
           .help = "The new inventory, in the same forms; this machine where it is left out",
           .isOptional = true,
           .store = StoreText(options.after)}};
}

std::vector<Option> DiffOptionTable(DiffOptions& options) {
  std::vector<Option> table = {
      FormatOption(options.format, {{"text"}, {"json"}}),
      ColorOption(options.color),
      OutputOption(options.output),
      IgnoreOption(options.ignored),
      {.names = {"--allow-suspect"},
       .help = "Compare in spite of lines that a device may have forged",
       .manual = R"(Compare in spite of lines in a device list that the kernel does not write, and that a
device may have forged.
Without this option, such a list is an error.)",
       .store = StoreTrue(options.allowsSuspect)},
      WayOption(options.source.way),
      AsIsOption(options.source.isAsIs)};
  for (Option& option : MaskOptions(options.source)) table.push_back(std::move(option));
  table.push_back({.names = {"--system-name"},
                   .value = "NAME",
                   .help = "The system name of device lists and of this machine",
                   .manual = R"(The name of the system in the keys of device lists and of this machine, as for
.Cm show .
JSON inventories keep their own names.)",
                   .store = StoreText(options.source.systemName)});
  table.push_back(
      {.names = {"--plugin"},
       .value = "FILE",
       .help = "Read device lists and this machine with this plug-in module",
       .defaultValue = "the installed one",
       .manual = "Read device lists and this machine with this plug-in module instead of the installed one.",
       .store = StoreText(options.source.plugin)});
  return table;
}

void CheckDiffOptions(const DiffOptions& options) {
  if (options.after.empty()) return;
  RefuseOptions({{"--source", options.source.way.has_value()},
                 {"--mask-serials", options.source.maskSerials},
                 {"--mask-key", !options.source.maskKey.empty()}},
                "is for this machine: leave it or NEW out");
}

}  // namespace cli
