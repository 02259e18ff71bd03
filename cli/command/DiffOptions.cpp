#include "cli/command/DiffOptions.h"

#include "cli/command/CommonOptions.h"
#include "cli/option/Values.h"

namespace cli {

std::vector<Operand> DiffOperands(DiffOptions& options) {
  return {{.name = "OLD",
           .help = "The old inventory: a JSON inventory or a device list; - is standard input",
           .store = StoreText(options.before)},
          {.name = "NEW", .help = "The new inventory, in the same forms", .store = StoreText(options.after)}};
}

std::vector<Option> DiffOptionTable(DiffOptions& options) {
  return {FormatOption(options.format, {"text", "json"}),
          ColorOption(options.color),
          OutputOption(options.output),
          {.names = {"--allow-suspect"},
           .help = "Compare in spite of lines that a device may have forged",
           .manual = R"(Compare in spite of lines in a device list that the kernel does not write, and that a
device may have forged.
Without this option, such a list is an error.)",
           .store = StoreTrue(options.allowsSuspect)},
          AsIsOption(options.isAsIs),
          {.names = {"--system-name"},
           .value = "NAME",
           .help = "The system name of device lists",
           .manual = R"(The name of the system in the keys of device lists, as for
.Cm show .
JSON inventories keep their own names.)",
           .store = StoreText(options.systemName)},
          {.names = {"--plugin"},
           .value = "FILE",
           .help = "Read device lists with this plug-in module",
           .defaultValue = "the installed one",
           .manual = "Read device lists with this plug-in module instead of the installed one.",
           .store = StoreText(options.plugin)}};
}

}  // namespace cli
