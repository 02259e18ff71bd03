// The options and operands of `usbinfo check`.
#pragma once

#include <string>
#include <vector>

#include "cli/collect/Source.h"
#include "cli/option/CommandSpec.h"

namespace cli {

struct CheckOptions {
  /// A file of rules, "-" for standard input.
  std::string policy;
  /// Files that hold JSON inventories or device lists, "-" for standard input; none for what `source` says.
  std::vector<std::string> inventories;
  Source source;
  /// The target for devices that no rule matches.
  std::string defaultTarget = "block";
  /// Check inventories that a device may have forged, too.
  bool allowsSuspect = false;
  std::string format = "text";
  /// Print one line for Nagios and exit as its plug-ins do.
  bool isForNagios = false;
  /// Empty for standard output.
  std::string output;
};

/// POLICY and INVENTORY, stored in `options`.
std::vector<Operand> CheckOperands(CheckOptions& options);

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> CheckOptionTable(CheckOptions& options);

/// To be called once the command line is read: makes the file of --devices the one inventory. Throws
/// UsageError for options that contradict each other.
void CompleteCheckOptions(CheckOptions& options);

/// Whether `arguments` are a command line, right or wrong, of a check for Nagios.
bool IsCheckForNagios(const std::vector<std::string>& arguments);

}  // namespace cli
