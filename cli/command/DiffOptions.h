// The options and operands of `usbinfo diff`.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"

namespace cli {

struct DiffOptions {
  /// Compare inventories that a device may have forged, too.
  bool allowsSuspect = false;
  /// Give the plug-in device lists as they are.
  bool isAsIs = false;
  /// Files that hold a JSON inventory or a device list, "-" for standard input.
  std::string before;
  std::string after;
  std::string format = "text";
  std::string color = "auto";
  /// Empty for standard output.
  std::string output;
  /// The system name of device lists; empty for the host name.
  std::string systemName;
  /// Empty for the installed one.
  std::string plugin;
};

/// OLD and NEW, stored in `options`.
std::vector<Operand> DiffOperands(DiffOptions& options);

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> DiffOptionTable(DiffOptions& options);

}  // namespace cli
