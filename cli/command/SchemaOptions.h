// The options of `usbinfo schema`.
#pragma once

#include <string>
#include <vector>

#include "cli/option/Option.h"

namespace cli {

struct SchemaOptions {
  std::string format = "mof";
  /// Empty for standard output.
  std::string output;
};

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> SchemaOptionTable(SchemaOptions& options);

}  // namespace cli
