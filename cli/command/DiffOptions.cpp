#include "cli/command/DiffOptions.h"

#include <utility>

#include "cli/command/SourceOptions.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"

namespace cli {

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
  std::vector<Option> table = {FormatOption(options.format, {{"text"}, {"json"}}),
                               ColorOption(options.color),
                               OutputOption(options.output),
                               IgnoreOption(options.ignored),
                               AllowSuspectOption("Compare", options.allowsSuspect),
                               WayOption(options.source.way),
                               AsIsOption(options.source.isAsIs)};
  for (Option& option : MaskOptions(options.source)) table.push_back(std::move(option));
  for (Option& option : ListOptions(options.source)) table.push_back(std::move(option));
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
