// What a run leaves behind, as far as a host can see it: its log, the questions to the machine, the committed
// instances, the calls made, and how the request ended. Runs of the plug-in and of its model are compared by
// it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/model/CallTrace.h"
#include "tests/model/Fault.h"
#include "tests/support/LogLine.h"

namespace usbinfo_test {

/// Property name to value as text.
using Properties = std::map<std::string, std::string>;

struct Outcome {
  std::vector<LogLine> log;
  std::vector<std::string> machineCalls;
  /// Class name to instances, in commit order; classes without any are left out.
  std::map<std::string, std::vector<Properties>> instances;
  CallTrace trace;
  /// What left the request: "nothing" or the kind of exception.
  std::string leaving = "nothing";

  std::vector<Properties> InstancesOf(const std::string& className) const;

  bool operator==(const Outcome& other) const;
  bool operator!=(const Outcome& other) const { return !(*this == other); }
};

/// The first difference between the two, for the message of a failing test; empty when there is none.
std::string Difference(const Outcome& actual, const Outcome& expected);

/// The text of Outcome::leaving for an exception of this kind.
const char* NameOf(FaultKind kind);

}  // namespace usbinfo_test
