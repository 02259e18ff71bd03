// The inventories in files that are compared with others, and whether they can be.
#pragma once

#include <string>

#include "cli/collect/Source.h"
#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"

namespace cli {

/// The JSON inventory or device list in the file at `path`, "-" for standard input. A list is read as
/// `source` says, whose `devices` does not count. Warns of findings. Throws UserError when there is neither
/// in it, and when there are findings unless `allowsSuspect`.
Inventory ReadComparedFile(const std::string& path, const Source& source, bool allowsSuspect, LogWriter& log);

/// This machine's inventory, read as `source` says. Warns and throws likewise.
Inventory CollectCompared(const Source& source, bool allowsSuspect, LogWriter& log);

/// An inventory and what messages call it.
struct NamedInventory {
  const Inventory& inventory;
  std::string name;
};

/// Throws UserError where serial numbers do not compare; warns where that is not known.
void CheckMasks(const NamedInventory& before, const NamedInventory& after);

}  // namespace cli
