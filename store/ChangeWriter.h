// Puts into the store what differs between a report and the one before it.
#pragma once

#include <cstdint>

#include "cli/model/Inventory.h"
#include "store/Database.h"
#include "store/Report.h"
#include "store/TimeText.h"

namespace store {

/// The report before, as the store has it.
struct EarlierReport {
  Seconds collected;
  cli::Inventory inventory;
};

/// Compares the reports of the host with that id and writes what differs. Nothing is written where nothing
/// does. Reports that cannot be compared are noted with the reason. Throws DatabaseError.
void WriteChanges(Database& database, std::int64_t hostId, const EarlierReport& before, const Report& after);

}  // namespace store
