#include "kernel/ListRepairs.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "kernel/ListRecords.h"
#include "kernel/Number.h"

namespace kernel {

namespace {

constexpr std::string_view kParentKey = "Prnt=";

std::optional<unsigned> NumberIn(std::string_view line, std::string_view key) {
  return ParseNumber(FieldOf(line, key), UINT8_MAX);
}

/// Where a record is, from its "T:" line.
struct RecordPlace {
  unsigned bus;
  unsigned level;
  unsigned number;

  bool operator<(const RecordPlace& other) const {
    return std::tie(bus, level, number) < std::tie(other.bus, other.level, other.number);
  }
};

std::optional<RecordPlace> PlaceOf(std::string_view topology) {
  const auto bus = NumberIn(topology, "Bus=");
  const auto level = NumberIn(topology, "Lev=");
  const auto number = NumberIn(topology, "Dev#=");
  if (!bus || !level || !number) return std::nullopt;
  return RecordPlace{*bus, *level, *number};
}

/// `topology` with that parent, in the kernel's two digits.
std::string WithParent(std::string_view topology, unsigned parent) {
  const std::string_view printed = FieldOf(topology, kParentKey);
  const std::string digits = std::to_string(parent);
  const auto at = static_cast<std::size_t>(printed.data() - topology.data());
  std::string line(topology.substr(0, at));
  if (digits.size() < 2) line += '0';
  return line.append(digits).append(topology.substr(at + printed.size()));
}

/// Knows which parents can be, and which one is the true one where the printed one cannot.
class Parents {
 public:
  explicit Parents(const std::vector<ListLine>& lines) {
    for (const ListLine& line : lines) {
      const auto place = line.Type() == 'T' ? PlaceOf(line.text) : std::nullopt;
      if (place) fPlaces.insert(*place);
    }
  }

  /// The true parent for the record of the next "T:" line where the printed one cannot be.
  std::optional<unsigned> TrueParent(std::string_view topology) {
    const auto place = PlaceOf(topology);
    if (!place) return std::nullopt;
    fLast[{place->bus, place->level}] = place->number;
    if (place->level == 0 || FieldOf(topology, kParentKey).empty()) return std::nullopt;
    const unsigned above = place->level - 1;
    const auto printed = NumberIn(topology, kParentKey);
    if (printed && fPlaces.count({place->bus, above, *printed}) != 0) return std::nullopt;
    const auto last = fLast.find({place->bus, above});
    return last == fLast.end() ? std::nullopt : std::optional<unsigned>(last->second);
  }

 private:
  std::set<RecordPlace> fPlaces;
  /// The number of the last record so far, by bus and level.
  std::map<std::pair<unsigned, unsigned>, unsigned> fLast;
};

/// Which lines belong to a configuration without interfaces all the same.
class StaleInterfaces {
 public:
  /// Counts the records of such lines in `records`.
  bool IsStale(const ListLine& line, std::size_t& records) {
    if (line.Type() == 'T' || line.IsBlank()) *this = StaleInterfaces();
    if (line.Type() == 'C') fHasNone = FieldOf(line.text, "#Ifs=") == "0";
    if (line.Type() != 'I' || !fHasNone) return false;
    if (!fIsCounted) ++records;
    fIsCounted = true;
    return true;
  }

 private:
  bool fHasNone = false;
  bool fIsCounted = false;
};

/// Puts lines back together to a text that ends as `text` does.
class TextOfLines {
 public:
  explicit TextOfLines(std::string_view text) : fText(text) { fOut.reserve(text.size()); }

  /// `line` is one of the text's, `shown` what stands in its place.
  void Add(const ListLine& line, std::string_view shown) {
    fOut += shown;
    const bool hasEnd = line.text.data() + line.text.size() != fText.data() + fText.size();
    if (hasEnd) fOut += '\n';
  }
  std::string Take() { return std::move(fOut); }

 private:
  std::string_view fText;
  std::string fOut;
};

}  // namespace

std::string RepairParents(std::string_view text, ListRepairs& repairs) {
  const std::vector<ListLine> lines = LinesOf(text);
  Parents parents(lines);
  TextOfLines repaired(text);
  for (const ListLine& line : lines) {
    const auto parent = line.Type() == 'T' ? parents.TrueParent(line.text) : std::nullopt;
    if (parent) ++repairs.parents;
    repaired.Add(line, parent ? WithParent(line.text, *parent) : line.text);
  }
  return repaired.Take();
}

std::string WithoutStaleInterfaces(std::string_view text, ListRepairs& repairs) {
  StaleInterfaces interfaces;
  TextOfLines kept(text);
  for (const ListLine& line : LinesOf(text)) {
    if (!interfaces.IsStale(line, repairs.staleInterfaces)) kept.Add(line, line.text);
  }
  return kept.Take();
}

std::string WithoutLinesBehindEndpoints(std::string_view text) {
  TextOfLines shown(text);
  bool isBehindEndpoint = false;
  for (const ListLine& line : LinesOf(text)) {
    if (line.Type() == 'T' || line.IsBlank()) isBehindEndpoint = false;
    if (!isBehindEndpoint) shown.Add(line, line.text);
    isBehindEndpoint = isBehindEndpoint || line.Letter() == 'E';
  }
  return shown.Take();
}

}  // namespace kernel
