#include "cli/format/TreeFormat.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "cli/format/RenderOptions.h"
#include "cli/model/DeviceText.h"
#include "cli/model/SocketText.h"
#include "cli/text/Text.h"
#include "cli/text/TextTable.h"

namespace cli {

namespace {

/// `speed`, if there is one, at least as wide as "480 Mbit/s", so that trees without such a port look the
/// same.
std::string Aligned(const std::string& speed) {
  return speed.empty() ? speed : fmt::format("{:>10}", speed);
}

/// Hubs and devices describe themselves; controllers and ports do not.
bool IsDescribed(const SocketNode& node) {
  return node.Class() == ClassId::kHub || node.Class() == ClassId::kDevice;
}

Tone ToneOf(const SocketNode& node, const SocketNode& shown) {
  if (node.Class() == ClassId::kController) return Tone::kHeading;
  if (shown.Class() == ClassId::kHub) return Tone::kHub;
  const bool isEmpty = shown.Class() == ClassId::kPort &&
                       (shown.state == SocketState::kFree || shown.state == SocketState::kNotUsed);
  return isEmpty ? Tone::kFree : Tone::kPlain;
}

std::string KindOfRow(const SocketNode& node, const SocketNode& shown) {
  return node.Class() == ClassId::kController ? "controller" : KindOf(shown);
}

/// The tree's columns and rows.
class TreeTable {
 public:
  TreeTable(const Sockets& sockets, const RenderOptions& options)
      : fSockets(sockets),
        fOptions(options),
        fTable(SurfaceOf(options.isStandardOutput, options.color)),
        fHasNamesColumn(options.names != nullptr && !options.isVerbose) {
    using Cells = TextTable::Kind;
    fPlace = Add({"USB", Cells::kTree, Importance::kIdentifier, 32});
    if (sockets.GetInventory().Kernel()) fKind = Add({"KIND", Cells::kLeft, Importance::kUseful, 12});
    fDevice = Add({"DEVICE", Cells::kLeft, Importance::kMain, 12});
    fId = Add({"ID", Cells::kLeft, Importance::kIdentifier, 9});
    fSpeed = Add({"SPEED", Cells::kRight, Importance::kUseful, 12});
    if (fHasNamesColumn) fKnownAs = Add({"KNOWN AS", Cells::kLeft, Importance::kMinor, 16});
    for (const SocketRow& row : sockets.Rows(!options.isVerbose)) AddRow(row);
  }

  std::string Print() const { return fTable.Print(); }

 private:
  std::size_t Add(TextTable::Column column) {
    fTable.AddColumn(std::move(column));
    return fColumns++;
  }

  void AddRow(const SocketRow& each) {
    const SocketNode& node = fSockets.Nodes()[each.node];
    const SocketNode& shown = fSockets.Shown(node);
    const TextTable::Row row = fTable.AddRow(each.depth);
    fTable.SetCell(row, fPlace, PlaceOf(fSockets, each));
    if (fKind) fTable.SetCell(row, *fKind, KindOfRow(node, shown));
    if (fOptions.isVerbose) {
      fTable.SetLines(row, fDevice, Lines(node, shown));
    } else {
      fTable.SetCell(row, fDevice, DescribeRow(fSockets, node));
    }
    fTable.SetCell(row, fId, FormatId(shown.GetItem()));
    fTable.SetCell(row, fSpeed, Aligned(SpeedOf(fSockets, shown)));
    if (fHasNamesColumn && IsDescribed(shown)) {
      fTable.SetCell(row, fKnownAs, KnownAs(shown.GetItem(), fOptions.names));
    }
    fTable.SetTone(row, ToneOf(node, shown));
  }

  std::vector<std::string> Lines(const SocketNode& node, const SocketNode& shown) const {
    std::vector<std::string> lines = {DescribeRow(fSockets, node)};
    if (!IsDescribed(shown)) return lines;
    for (std::string& detail : DetailsOf(shown, fOptions.names)) lines.push_back(std::move(detail));
    return lines;
  }

  const Sockets& fSockets;
  const RenderOptions& fOptions;
  TextTable fTable;
  bool fHasNamesColumn;
  std::size_t fColumns = 0;
  std::size_t fPlace = 0;
  /// Nothing where the kernel's facts are not known.
  std::optional<std::size_t> fKind;
  std::size_t fDevice = 0;
  std::size_t fId = 0;
  std::size_t fSpeed = 0;
  std::size_t fKnownAs = 0;
};

}  // namespace

std::string RenderTree(const Inventory& inventory, const RenderOptions& options) {
  const Sockets sockets(inventory);
  const std::string heading = EscapeForTerminal(Summary(sockets)) + "\n\n";
  if (sockets.Nodes().empty()) return heading + "Associations alone have no rows in a tree.\n";
  return heading + TreeTable(sockets, options).Print();
}

}  // namespace cli
