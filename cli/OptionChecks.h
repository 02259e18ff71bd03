// Checks of option values that several subcommands make as they parse.
#pragma once

#include <string>

namespace cli {

/// For CLI11: what is wrong with `text`, or empty. An empty name is most often an unset variable; taking it
/// for "not given" would do something else.
inline std::string CheckNotEmpty(const std::string& text) {
  return text.empty() ? "must not be empty" : "";
}

}  // namespace cli
