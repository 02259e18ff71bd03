#include "cli/command/SchemaOptions.h"

#include "cli/command/CommonOptions.h"
#include "cli/option/Values.h"

namespace cli {

std::vector<Option> SchemaOptionTable(SchemaOptions& options) {
  const std::vector<Choice> formats = ChoicesOf({"mof", "json"});
  return {{.names = {"--format"},
           .value = "FORMAT",
           .help = "How to print",
           .defaultValue = options.format,
           .choices = formats,
           .manual = "How to print:",
           .store = StoreChoice(options.format, formats)},
          OutputOption(options.output)};
}

}  // namespace cli
