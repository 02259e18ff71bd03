// `usbinfo-store load`: takes inventories into the store.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"
#include "store/ReportWriter.h"

namespace store {

struct LoadOptions {
  std::string database;
  ListOptions list;
  /// "-" is standard input; none means it, too.
  std::vector<std::string> files;
  std::optional<Moment> collected;
  Permissions permissions;
  bool confirms = false;
};

std::vector<cli::Operand> LoadOperands(LoadOptions& options);
/// `options` must outlive the table, as in all subcommands.
std::vector<cli::Option> LoadOptionTable(LoadOptions& options);
/// Throws UsageError for options that contradict each other.
void CheckLoad(const LoadOptions& options);

/// Loads, and prints how many of each kind there were; gives the exit status. Throws UserError and
/// DatabaseError.
int RunLoad(const LoadOptions& options, const Clock& clock);

}  // namespace store
