// The output formats: one file each, and the one list of them. A format turns the inventory into text; where
// the text goes is not its business.
#pragma once

#include <string>
#include <vector>

namespace cli {

class Inventory;
struct RenderOptions;

struct OutputFormat {
  std::string name;
  /// For programs rather than people: an empty inventory is still a document.
  bool isMachineReadable;
  std::string (*render)(const Inventory& inventory, const RenderOptions& options);
  /// Draws how the items hang together: what is selected comes with the path that leads to it.
  bool keepsPath = false;
  /// Shows the names that vendors and products are known by.
  bool showsNames = false;
};

/// All formats; the first is the default.
const std::vector<OutputFormat>& OutputFormats();

/// The format of that name, which must be one of the list.
const OutputFormat& FindOutputFormat(const std::string& name);

}  // namespace cli
