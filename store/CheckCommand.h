// `usbinfo-store check`: which devices of the machines a policy does not allow.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct CheckOptions {
  std::string database;
  /// A file of rules, "-" for standard input.
  std::string policy;
  std::optional<Moment> at;
  /// The target for devices that no rule matches.
  std::string defaultTarget = "block";
  /// Check reports that a device may have forged, too.
  bool allowsSuspect = false;
  std::string format = "text";
  std::string output;
};

std::vector<cli::Operand> CheckOperands(CheckOptions& options);
std::vector<cli::Option> CheckOptionTable(CheckOptions& options);

/// Prints what is not allowed, and gives the exit status: that of a failure where a host could not be
/// checked. Throws UserError, also where there is nothing to check, and DatabaseError.
int RunCheck(const CheckOptions& options, const Clock& clock);

}  // namespace store
