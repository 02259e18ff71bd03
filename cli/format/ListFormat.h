// The device list as it came or was made, for other programs that read such lists.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// The whole text. Throws UserError for a saved inventory, which does not have it.
std::string RenderList(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
