#include "cli/collect/RootHubStrings.h"

namespace cli {

namespace {

bool Contains(std::string_view line, std::string_view part) {
  return line.find(part) != std::string_view::npos;
}

constexpr char kBlank = '\n';

/// The letter before the colon; kBlank for a blank line, 0 for any other.
char TypeOf(std::string_view line) {
  if (line.find_first_not_of(" \t\r") == std::string_view::npos) return kBlank;
  return line.size() > 1 && line[1] == ':' ? line[0] : '\0';
}

}  // namespace

bool RootHubStrings::Take(std::string_view line) {
  const char type = TypeOf(line);
  fState = After(type, line);
  if (type != kBlank) fLastType = type;
  return fState == State::kStrings && type == 'S';
}

RootHubStrings::State RootHubStrings::After(char type, std::string_view line) const {
  if (type == kBlank) return fLastType == 'S' ? State::kOther : State::kStart;
  switch (fState) {
    case State::kStart:
      return type == 'T' && Contains(line, " Lev=00 ") ? State::kTopology : State::kOther;
    case State::kTopology:
      // The bandwidth and the descriptor stand between the two.
      if (type == 'B' || type == 'D') return State::kTopology;
      return type == 'P' && Contains(line, " Vendor=1d6b ") ? State::kStrings : State::kOther;
    case State::kStrings:
      return type == 'S' ? State::kStrings : State::kOther;
    default:
      return State::kOther;
  }
}

}  // namespace cli
