// The options and operands of `usbinfo diff`.
#pragma once

#include <string>
#include <vector>

#include "cli/collect/Source.h"
#include "cli/option/CommandSpec.h"

namespace cli {

struct DiffOptions {
  /// Compare inventories that a device may have forged, too.
  bool allowsSuspect = false;
  /// A file that holds a JSON inventory or a device list, "-" for standard input.
  std::string before;
  /// The same; empty for this machine.
  std::string after;
  /// How device lists and this machine are read; `devices` does not count.
  Source source;
  /// Names of properties that are not compared.
  std::vector<std::string> ignored;
  std::string format = "text";
  std::string color = "auto";
  /// Empty for standard output.
  std::string output;
};

/// OLD and NEW, stored in `options`.
std::vector<Operand> DiffOperands(DiffOptions& options);

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> DiffOptionTable(DiffOptions& options);

/// Checks what depends on several options. Throws UsageError.
void CheckDiffOptions(const DiffOptions& options);

}  // namespace cli
