// What the user should know although the command goes on.
#pragma once

#include <string>

namespace cli {

/// Prints `warning`, made fit for a terminal, as one line on standard error.
void Warn(const std::string& warning);

}  // namespace cli
