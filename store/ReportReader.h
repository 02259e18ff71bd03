// Reads back from the store what a machine reported.
#pragma once

#include <optional>
#include <string>

#include "cli/model/Inventory.h"
#include "store/Database.h"
#include "store/TimeText.h"

namespace store {

/// The inventory of the last report of `host` that was collected by then, as it was loaded; nothing where
/// there is none. Throws DatabaseError, also where the store is damaged.
std::optional<cli::Inventory> ReadReport(Database& database, const std::string& host, Seconds at);
/// The same in the transaction of the caller.
std::optional<cli::Inventory> ReadReportWithin(Database& database, const std::string& host, Seconds at);

/// Whether there is a host of that name.
bool HasHost(Database& database, const std::string& host);

}  // namespace store
