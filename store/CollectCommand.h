// `usbinfo-store collect`: fetches the inventories of many machines through ClusterShell.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/Clush.h"
#include "store/CommonOptions.h"

namespace store {

struct CollectOptions {
  std::string database;
  ListOptions list;
  ClushSettings clush{
      .selection = {}, .command = "usbinfo --format json --compact", .fanout = {}, .timeout = 60};
};

std::vector<cli::Option> CollectOptionTable(CollectOptions& options);
/// Throws UsageError when no nodes are named.
void CheckCollect(const CollectOptions& options);

/// Gives the exit status. Throws UserError and DatabaseError.
int RunCollect(const CollectOptions& options, const Clock& clock);

}  // namespace store
