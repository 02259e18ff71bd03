// What an output format may know of the place its text goes to and of what was asked for. The command fills
// it from its options; a format reads what concerns it and passes over the rest.
#pragma once

#include <string>
#include <vector>

#include "cli/text/Color.h"

namespace cli {

class UsbIds;

struct RenderOptions {
  /// Standard output rather than a file: fit the width if it is a terminal.
  bool isStandardOutput = true;
  Color color = Color::kAuto;
  /// More about each thing than a line holds.
  bool isVerbose = false;
  /// The properties to show; empty for what the format chooses.
  std::vector<std::string> columns = {};
  /// What vendors and products are known as; null for no such names. Owned by the caller.
  const UsbIds* names = nullptr;
};

}  // namespace cli
