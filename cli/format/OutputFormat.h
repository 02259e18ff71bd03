// The output formats: one file each, and the one list of them. A format turns the inventory into text; its
// caller decides where the text goes.
#pragma once

#include <string>
#include <vector>

namespace cli {

class Inventory;
struct RenderOptions;

struct OutputFormat {
  std::string name;
  /// A few words of plain text.
  std::string description;
  /// For programs rather than people: an empty inventory still gives a document.
  bool isMachineReadable;
  std::string (*render)(const Inventory& inventory, const RenderOptions& options);
  /// Draws how the items are connected: selected items are shown with the path that leads to them.
  bool keepsPath = false;
  /// Shows the names of vendors and products from the list of names.
  bool showsNames = false;
  /// Shows sockets; may show only what is plugged in, or only what is free.
  bool takesOccupancy = false;
  /// Shows all that the kernel knows, without being asked for more.
  bool showsAllFacts = false;
  /// What it prints of the whole inventory alone, so that a selection is refused: "the whole device list".
  const char* ofWhole = nullptr;
};

/// All formats; the first is the default.
const std::vector<OutputFormat>& OutputFormats();

/// The format of that name, which must be one of the list.
const OutputFormat& FindOutputFormat(const std::string& name);

}  // namespace cli
