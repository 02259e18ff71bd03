// The device that a text for people is shown on: its width and its character set.
#pragma once

#include <cstddef>
#include <optional>

#include "cli/text/Color.h"

namespace cli {

struct Surface {
  /// The columns of a terminal, 1 or more; none where lines may have any length.
  std::optional<std::size_t> width;
  bool isColored = false;
  /// Whether the locale's characters are those of UTF-8; elsewhere only ASCII is shown.
  bool isUtf8 = false;
};

/// Standard output, or a file when `isStandardOutput` is false. A terminal is as wide as the environment
/// variable COLUMNS says, if that is a positive number, otherwise as the terminal itself reports, and 80
/// columns wide if it does not.
Surface SurfaceOf(bool isStandardOutput, Color color);

}  // namespace cli
