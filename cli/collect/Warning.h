// Warnings: messages after which the command goes on.
#pragma once

#include <string>

namespace cli {

/// Prints `warning` as one line on standard error, escaped for a terminal.
void Warn(const std::string& warning);

}  // namespace cli
