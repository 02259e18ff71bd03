#include "cli/command/ComparedFile.h"

#include <fmt/format.h>

#include "cli/collect/Collection.h"
#include "cli/collect/DeviceListText.h"
#include "cli/command/Findings.h"
#include "cli/diff/Comparability.h"
#include "cli/model/FromJson.h"
#include "cli/text/Input.h"
#include "cli/text/Message.h"
#include "cli/text/UserError.h"

namespace cli {

Inventory ReadComparedFile(const std::string& path, const Source& source, bool allowsSuspect,
                           LogWriter& log) {
  const std::string text = ReadInput(path, "name a file that holds a JSON inventory or a device list");
  const std::string name = NameOfList(path);
  if (!LooksLikeJson(text) && !LooksLikeDeviceList(text)) {
    throw UserError(fmt::format(
        "{} holds neither a JSON inventory nor a device list; save one with usbinfo --format json", name));
  }
  Source list;
  list.devices = path;
  list.plugin = source.plugin;
  list.systemName = source.systemName;
  list.isAsIs = source.isAsIs;
  Inventory inventory = CollectFrom(text, list, AllClasses(), log);
  if (!allowsSuspect) RefuseFindings(inventory, name, "compare");
  WarnOfFindings(inventory);
  return inventory;
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
