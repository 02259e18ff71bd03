// The devices as comma-separated values, for spreadsheets and scripts: RFC 4180, in UTF-8.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// A line of titles and one per device, always with all of DeviceColumns. Texts are escaped as in other
/// documents; a cell whose text begins with a character by which spreadsheets recognise formulas has an
/// apostrophe before it.
std::string RenderCsv(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
