#include "cli/command/InventoryFile.h"

#include <fmt/format.h>

#include "cli/collect/Collection.h"
#include "cli/collect/DeviceListText.h"
#include "cli/model/FromJson.h"
#include "cli/option/UsageError.h"
#include "cli/text/Input.h"
#include "cli/text/UserError.h"

namespace cli {

std::string NameOfInventory(const std::string& path) {
  return path.empty() ? kThisMachine : NameOfList(path);
}

Inventory ReadInventoryFile(const Source& source, LogWriter& log) {
  const std::string text =
      ReadInput(source.devices, "name a file that holds a JSON inventory or a device list");
  if (!LooksLikeJson(text) && !LooksLikeDeviceList(text)) {
    throw UserError(fmt::format(
        "{} holds neither a JSON inventory nor a device list; save one with usbinfo --format json",
        NameOfList(source.devices)));
  }
  return CollectFrom(text, source, AllClasses(), log);
}

void RefuseOptionsForLists(const Source& source, const std::string& where) {
  RefuseOptions({{"--as-is", source.isAsIs},
                 {"--plugin", !source.plugin.empty()},
                 {"--system-name", !source.systemName.empty()}},
                fmt::format("is for device lists, and {}: leave it out", where));
}

}  // namespace cli
