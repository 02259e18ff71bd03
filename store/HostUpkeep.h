// Changes to what the store holds of its hosts, besides loading. Each is one transaction.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/Database.h"
#include "store/TimeText.h"

namespace store {

/// Deletes all that is known of a host, also what was refused of it. Gives the number of its reports; nothing
/// where there is no such host. Throws DatabaseError, as the others do.
std::optional<std::uint64_t> Forget(Database& database, const std::string& host);

/// Gives a host another name; false where there is none of the old name. Throws UserError where another one
/// has the new name.
bool Rename(Database& database, const std::string& before, const std::string& after);

struct Pruned {
  std::uint64_t reports = 0;
  std::uint64_t items = 0;
  std::uint64_t late = 0;
  std::uint64_t refused = 0;
};

/// Deletes what is only needed to show times before `since`. The last report before that stays, since it says
/// how a machine was then.
Pruned Prune(Database& database, Seconds since);

}  // namespace store
