#include "cli/format/TreeFormat.h"

#include <fmt/format.h>

#include <utility>

#include "cli/format/RenderOptions.h"
#include "cli/model/Description.h"
#include "cli/model/DeviceText.h"
#include "cli/model/UsbTree.h"
#include "cli/text/Text.h"
#include "cli/text/TextTable.h"

namespace cli {

namespace {

enum Column : std::size_t { kPlace, kDevice, kId, kSpeed, kKnownAs };

std::string Device(const Inventory& inventory, const UsbTreeNode& node) {
  if (node.Class() != ClassId::kHub) return DisplayName(inventory, node);
  const std::string ports = Count(node.item->Number(PropertyId::kNumberOfPorts), "port");
  return node.isRootHub ? ports : DisplayName(inventory, node) + ", " + ports;
}

/// `speed`, if there is one, at least as wide as "480 Mbit/s", so that trees without such a port look the
/// same.
std::string Aligned(const std::string& speed) {
  return speed.empty() ? speed : fmt::format("{:>10}", speed);
}

/// Hubs and devices describe themselves; controllers and ports do not.
bool IsDescribed(const UsbTreeNode& node) {
  return node.Class() == ClassId::kHub || node.Class() == ClassId::kDevice;
}

Tone ToneOf(const Inventory& inventory, const UsbTreeNode& node) {
  switch (node.Class()) {
    case ClassId::kController:
      return Tone::kHeading;
    case ClassId::kHub:
      return Tone::kHub;
    case ClassId::kPort:
      return inventory.StateOf(*node.item) == PortState::kFree ? Tone::kFree : Tone::kPlain;
    default:
      return Tone::kPlain;
  }
}

/// The tree's columns and rows.
class TreeTable {
 public:
  TreeTable(const Inventory& inventory, const UsbTree& tree, const RenderOptions& options)
      : fInventory(inventory),
        fTree(tree),
        fOptions(options),
        fTable(SurfaceOf(options.isStandardOutput, options.color)),
        fHasNamesColumn(options.names != nullptr && !options.isVerbose) {
    using Cells = TextTable::Kind;
    fTable.AddColumn({"USB", Cells::kTree, Importance::kIdentifier, 32});
    fTable.AddColumn({"DEVICE", Cells::kLeft, Importance::kMain, 12});
    fTable.AddColumn({"ID", Cells::kLeft, Importance::kIdentifier, 9});
    fTable.AddColumn({"SPEED", Cells::kRight, Importance::kUseful, 12});
    if (fHasNamesColumn) fTable.AddColumn({"KNOWN AS", Cells::kLeft, Importance::kMinor, 16});
    AddRows();
  }

  std::string Print() const { return fTable.Print(); }

 private:
  void AddRows() {
    for (const UsbTreeRow& row : fTree.Rows()) AddRow(row.depth, fTree.Nodes()[row.node]);
  }

  void AddRow(std::size_t depth, const UsbTreeNode& node) {
    const UsbTreeNode& shown = fTree.Shown(node);
    const TextTable::Row row = fTable.AddRow(depth);
    fTable.SetCell(row, kPlace, PlaceOf(node, depth == 0));
    if (fOptions.isVerbose) {
      fTable.SetLines(row, kDevice, Lines(shown));
    } else {
      fTable.SetCell(row, kDevice, Device(fInventory, shown));
    }
    fTable.SetCell(row, kId, FormatId(*shown.item));
    fTable.SetCell(row, kSpeed, Aligned(SpeedOf(fTree, shown)));
    if (fHasNamesColumn && IsDescribed(shown)) {
      fTable.SetCell(row, kKnownAs, KnownAs(*shown.item, fOptions.names));
    }
    fTable.SetTone(row, ToneOf(fInventory, shown));
  }

  std::vector<std::string> Lines(const UsbTreeNode& node) const {
    std::vector<std::string> lines = {Device(fInventory, node)};
    if (!IsDescribed(node)) return lines;
    for (std::string& detail : DetailsOf(*node.item, fOptions.names)) lines.push_back(std::move(detail));
    return lines;
  }

  const Inventory& fInventory;
  const UsbTree& fTree;
  const RenderOptions& fOptions;
  TextTable fTable;
  bool fHasNamesColumn;
};

}  // namespace

std::string RenderTree(const Inventory& inventory, const RenderOptions& options) {
  const UsbTree tree(inventory);
  const std::string heading = EscapeForTerminal(Summary(inventory)) + "\n\n";
  if (tree.Nodes().empty()) return heading + "Associations alone have no rows in a tree.\n";
  return heading + TreeTable(inventory, tree, options).Print();
}

}  // namespace cli
