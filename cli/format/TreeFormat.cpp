#include "cli/format/TreeFormat.h"

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
        fTable(options),
        fHasNamesColumn(options.names != nullptr && !options.isVerbose && fTable.HasRoomForNames()) {
    using Cells = TextTable::Kind;
    fTable.AddColumn({"USB", Cells::kTree, 0.2});
    fTable.AddColumn({"DEVICE", options.isVerbose ? Cells::kLines : Cells::kCut, 0.5});
    fTable.AddColumn({"ID", Cells::kText, 9});
    fTable.AddColumn({"SPEED", Cells::kRight, 10});
    if (fHasNamesColumn) fTable.AddColumn({"KNOWN AS", Cells::kCut, 0.2});
    AddRows();
  }

  std::string Print() const { return fTable.Print(); }

 private:
  void AddRows() {
    // The last row at each depth.
    std::vector<TextTable::Row> rows;
    for (const UsbTreeRow& row : fTree.Rows()) {
      const TextTable::Row parent = row.depth == 0 ? nullptr : rows[row.depth - 1];
      rows.resize(row.depth);
      rows.push_back(AddRow(parent, fTree.Nodes()[row.node]));
    }
  }

  TextTable::Row AddRow(TextTable::Row parent, const UsbTreeNode& node) {
    const UsbTreeNode& shown = fTree.Shown(node);
    const TextTable::Row row = fTable.AddRow(parent);
    fTable.SetCell(row, kPlace, PlaceOf(node, parent == nullptr));
    if (fOptions.isVerbose) {
      fTable.SetLines(row, kDevice, Lines(shown));
    } else {
      fTable.SetCell(row, kDevice, Device(fInventory, shown));
    }
    fTable.SetCell(row, kId, FormatId(*shown.item));
    fTable.SetCell(row, kSpeed, SpeedOf(fTree, shown));
    if (fHasNamesColumn && IsDescribed(shown)) {
      fTable.SetCell(row, kKnownAs, KnownAs(*shown.item, fOptions.names));
    }
    fTable.SetTone(row, ToneOf(fInventory, shown));
    return row;
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
