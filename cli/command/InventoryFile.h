// The inventories that the operands of a command name: files, and this machine.
#pragma once

#include <string>

#include "cli/collect/Source.h"
#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"

namespace cli {

/// What messages call the inventory of this machine.
inline constexpr const char* kThisMachine = "this machine";

/// What messages call the inventory at `path`, which is empty for this machine's.
std::string NameOfInventory(const std::string& path);

/// The JSON inventory or device list in the file `source.devices`, "-" for standard input. A list is read as
/// `source` says. Throws UserError when there is neither in it.
Inventory ReadInventoryFile(const Source& source, LogWriter& log);

/// Saved inventories are not collected again, so options of collecting have no effect on them. Throws
/// UsageError where `source` has one; `where` says that there is no device list: "both files hold saved
/// inventories".
void RefuseOptionsForLists(const Source& source, const std::string& where);

}  // namespace cli
