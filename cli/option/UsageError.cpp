#include "cli/option/UsageError.h"

namespace cli {

void RefuseOptions(std::initializer_list<GivenOption> options, const std::string& reason) {
  for (const GivenOption& option : options) {
    if (option.isGiven) throw UsageError(std::string(option.name) + " " + reason);
  }
}

}  // namespace cli
