#include "tests/fuzz/SavedInventory.h"

#include "cli/format/JsonFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/FromJson.h"
#include "tests/fuzz/BrokenInvariant.h"

namespace usbinfo_test {

void CheckSaved(const cli::Inventory& inventory) {
  const std::string saved = cli::RenderJson(inventory, cli::RenderOptions{false});
  const cli::Inventory again = cli::FromJson(saved, "saved");
  RequireEqual(cli::RenderJson(again, cli::RenderOptions{false}), saved, "a saved inventory, saved again");
}

}  // namespace usbinfo_test
