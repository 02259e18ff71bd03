#include "cli/command/SchemaOptions.h"

#include "cli/option/CommonOptions.h"

namespace cli {

std::vector<Option> SchemaOptionTable(SchemaOptions& options) {
  return {FormatOption(options.format, {{"mof"}, {"json"}}), OutputOption(options.output)};
}

}  // namespace cli
