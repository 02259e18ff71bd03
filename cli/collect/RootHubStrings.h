// Which lines of a device list hold a root hub's own strings. The kernel writes those itself: a root hub's
// serial number is the address of its controller. All other strings are what devices say, and a device may
// put whole lines into them, to look like something else.
#pragma once

#include <string_view>

namespace cli {

class RootHubStrings {
 public:
  /// Takes the next line of the list, without its newline; whether it is an "S:" line of a root hub's record.
  /// It is one only where the record's "T:" line says level 0 and its "P:" line vendor 1d6b, both stand
  /// before the first string, in that order, and nothing else than strings stands between them and this line.
  /// A record begins at the start and behind a blank line, unless that follows on a string.
  bool Take(std::string_view line);

 private:
  enum class State {
    kStart,     // a record may begin
    kTopology,  // behind a root hub's "T:" line
    kStrings,   // behind its "P:" line
    kOther,     // in what is no root hub's record, or no longer its strings
  };

  State After(char type, std::string_view line) const;

  State fState = State::kStart;
  /// Of the last line that is not blank.
  char fLastType = '\0';
};

}  // namespace cli
