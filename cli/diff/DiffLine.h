// One item that differs, as text: what a line of `usbinfo diff` holds, in parts that can be kept.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct ComparedMachine;

enum class DifferenceKind { kRemoved, kMoved, kChanged, kAdded };

inline constexpr std::array<DifferenceKind, 4> kDifferenceKinds = {
    DifferenceKind::kRemoved, DifferenceKind::kMoved, DifferenceKind::kChanged, DifferenceKind::kAdded};

/// "removed", "moved", "changed", "added", as the lists in JSON are called.
std::string_view NameOf(DifferenceKind kind);

/// All texts are UTF-8 on one line, with what a device sends in quotes and escaped.
struct DiffLine {
  DifferenceKind kind;
  /// Where an item that moved was; empty for others.
  std::string placeBefore;
  std::string place;
  std::string description;
  /// What changed of it: "Speed: 480 Mb/s -> 5 Gb/s".
  std::vector<std::string> properties;
};

/// "> 1-3.1 -> 1-3.5: keyboard", and an indented line for each property. These functions give whole lines for
/// the character set of the locale.
std::string RenderDiffLine(const DiffLine& line, bool isColored);

/// Both machines and when their inventories were made.
std::string RenderDiffHeading(const ComparedMachine& before, const ComparedMachine& after);

/// "1 added, 2 removed"; what there is none of is left out.
std::string RenderDiffCounts(const std::vector<DiffLine>& lines);

}  // namespace cli
