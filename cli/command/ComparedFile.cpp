#include "cli/command/ComparedFile.h"

#include <fmt/format.h>

#include "cli/collect/Collection.h"
#include "cli/command/Findings.h"
#include "cli/command/InventoryFile.h"
#include "cli/diff/Comparability.h"
#include "cli/text/Message.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

Inventory Accepted(Inventory inventory, const std::string& name, bool allowsSuspect) {
  if (!allowsSuspect) RefuseFindings(inventory, name, "compare");
  WarnOfFindings(inventory);
  return inventory;
}

}  // namespace

Inventory ReadComparedFile(const std::string& path, const Source& source, bool allowsSuspect,
                           LogWriter& log) {
  Source list;
  list.devices = path;
  list.plugin = source.plugin;
  list.systemName = source.systemName;
  list.isAsIs = source.isAsIs;
  return Accepted(ReadInventoryFile(list, log), NameOfInventory(path), allowsSuspect);
}

Inventory CollectCompared(const Source& source, bool allowsSuspect, LogWriter& log) {
  return Accepted(Collect(source, AllClasses(), log), kThisMachine, allowsSuspect);
}

void CheckMasks(const NamedInventory& before, const NamedInventory& after) {
  if (const auto difference = DifferenceOfMasks(before.inventory, after.inventory)) {
    throw UserError(fmt::format("{} and {} cannot be compared: {}", before.name, after.name, *difference));
  }
  if (!IsMaskingUnknown(before.inventory, after.inventory)) return;
  PrintMessage(fmt::format("{} does not say whether its serial numbers are masked; save it anew to be sure",
                           before.inventory.GetOrigin() ? after.name : before.name));
}

}  // namespace cli
