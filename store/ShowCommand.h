// `usbinfo-store show`: what a machine reported, in the formats of usbinfo.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct ShowOptions {
  std::string database;
  std::string host;
  std::optional<Moment> at;
  std::string format;
  std::string color = "auto";
  std::string output;
  bool isVerbose = false;
};

std::vector<cli::Operand> ShowOperands(ShowOptions& options);
std::vector<cli::Option> ShowOptionTable(ShowOptions& options);
/// Throws UsageError for options that contradict each other.
void CheckShow(const ShowOptions& options);

/// Gives the exit status. Throws UserError and DatabaseError.
int RunShow(const ShowOptions& options, const Clock& clock);

}  // namespace store
