// Finds the lines of a device list that hold a root hub's own strings. The kernel writes those itself; a root
// hub's serial number is the address of its controller. All other strings come from devices, and a device may
// put whole lines into them to imitate a root hub.
#pragma once

#include <string_view>

namespace cli {

class RootHubStrings {
 public:
  /// Takes the next line of the list, without its newline; true when it is an "S:" line of a root hub's
  /// record. That takes a "T:" line with level 0, then a "P:" line with vendor 1d6b, both before the first
  /// string, and only strings between them and this line. A record begins at the start of the list and after
  /// a blank line, unless that follows a string.
  bool Take(std::string_view line);

 private:
  enum class State {
    kStart,     // a record may begin
    kTopology,  // after a root hub's "T:" line
    kStrings,   // after its "P:" line
    kOther,     // in any other record, or after the strings
  };

  State After(char type, std::string_view line) const;

  State fState = State::kStart;
  /// Of the last line that is not blank.
  char fLastType = '\0';
};

}  // namespace cli
