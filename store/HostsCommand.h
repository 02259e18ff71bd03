// `usbinfo-store hosts`: the machines of the store, with their last reports.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct HostsOptions {
  std::string database;
  ListOptions list;
  /// List only hosts whose last report is older than this.
  std::optional<Seconds> silentFor;
};

std::vector<cli::Option> HostsOptionTable(HostsOptions& options);

/// Gives the exit status. Throws UserError and DatabaseError.
int RunHosts(const HostsOptions& options, const Clock& clock);

}  // namespace store
