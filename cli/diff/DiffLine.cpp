#include "cli/diff/DiffLine.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/diff/InventoryDiff.h"
#include "cli/model/OriginText.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

struct KindText {
  std::string_view name;
  char mark;
  const char* color;
};

KindText TextOf(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::kRemoved:
      return {"removed", '-', "31"};
    case DifferenceKind::kMoved:
      return {"moved", '>', "36"};
    case DifferenceKind::kChanged:
      return {"changed", '~', "33"};
    case DifferenceKind::kAdded:
      break;
  }
  return {"added", '+', "32"};
}

std::string Colored(const char* color, const std::string& line) {
  return fmt::format("\x1B[{}m{}\x1B[0m", color, line);
}

std::string DescribeMachine(const ComparedMachine& machine) {
  const bool isKnown = machine.origin && machine.origin->collected;
  return fmt::format("{} ({})", QuoteForTerminal(machine.system),
                     isKnown ? TimeOf(*machine.origin) : "time not known");
}

}  // namespace

std::string_view NameOf(DifferenceKind kind) {
  return TextOf(kind).name;
}

std::string RenderDiffLine(const DiffLine& line, bool isColored) {
  const KindText kind = TextOf(line.kind);
  const std::string from = line.placeBefore.empty() ? "" : line.placeBefore + " -> ";
  const std::string first = fmt::format("{} {}{}: {}", kind.mark, from, line.place, line.description);
  std::string text = (isColored ? Colored(kind.color, first) : first) + "\n";
  for (const std::string& property : line.properties) text += "    " + property + "\n";
  return InCharacterSetOfLocale(text);
}

std::string RenderDiffHeading(const ComparedMachine& before, const ComparedMachine& after) {
  return fmt::format("{} -> {}\n", DescribeMachine(before), DescribeMachine(after));
}

std::string RenderDiffCounts(const std::vector<DiffLine>& lines) {
  std::vector<std::string> counts;
  for (const DifferenceKind kind :
       {DifferenceKind::kAdded, DifferenceKind::kRemoved, DifferenceKind::kMoved, DifferenceKind::kChanged}) {
    const auto count =
        std::count_if(lines.begin(), lines.end(), [kind](const DiffLine& line) { return line.kind == kind; });
    if (count > 0) counts.push_back(fmt::format("{} {}", count, NameOf(kind)));
  }
  return fmt::format("{}\n", fmt::join(counts, ", "));
}

}  // namespace cli
