// `usbinfo-store changes`: what differs between the reports of each machine.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct ChangesOptions {
  std::string database;
  std::optional<Moment> since;
  /// Empty for all hosts.
  std::string host;
  std::string format = "text";
  std::string color = "auto";
  std::string output;
};

std::vector<cli::Option> ChangesOptionTable(ChangesOptions& options);

/// Prints them, and gives the exit status. Throws UserError and DatabaseError.
int RunChanges(const ChangesOptions& options, const Clock& clock);

}  // namespace store
