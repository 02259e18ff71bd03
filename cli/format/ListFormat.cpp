#include "cli/format/ListFormat.h"

#include "cli/model/Inventory.h"
#include "cli/text/UserError.h"

namespace cli {

std::string RenderList(const Inventory& inventory, const RenderOptions&) {
  if (inventory.DeviceList()) return *inventory.DeviceList();
  throw UserError("a saved inventory does not hold its device list; use another format");
}

}  // namespace cli
