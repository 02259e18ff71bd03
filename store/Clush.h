// ClusterShell's programs: `clush` runs a command on many nodes, `nodeset` knows which ones a text means.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "store/TimeText.h"

namespace store {

/// Which nodes, as ClusterShell writes them: "web[1-9],@racks:3".
struct NodeSelection {
  std::string nodes;
  /// Those to leave out; empty for none.
  std::string excluded;
};

/// The names of the nodes. Throws UserError for a text that nodeset does not understand.
std::set<std::string> ExpandNodes(const NodeSelection& selection);

struct ClushSettings {
  NodeSelection selection;
  /// What to run on each node.
  std::string command;
  /// How many nodes at a time; empty for what ClusterShell is configured to.
  std::string fanout;
  /// After which the command is given up on a node.
  Seconds timeout;
};

/// What comes back from the nodes, whose names are those of ExpandNodes.
class NodeEvents {
 public:
  NodeEvents() = default;
  NodeEvents(const NodeEvents&) = delete;
  NodeEvents& operator=(const NodeEvents&) = delete;
  virtual ~NodeEvents() = default;

  /// A line of standard output; `isCut` where it was too long.
  virtual void OnOutput(const std::string& node, const std::string& line, bool isCut) = 0;
  /// A line of standard error.
  virtual void OnError(const std::string& node, const std::string& line) = 0;
  /// The command, or the connection, ended with a status other than 0.
  virtual void OnExit(const std::string& node, const std::string& status) = 0;
  /// The time was up.
  virtual void OnTimeout(const std::string& node) = 0;
};

/// Runs the command on `nodes` and calls `events` as things come. Throws UserError when clush cannot be run
/// or fails as a whole, and whatever `events` throw; the command is then ended everywhere.
void RunClush(const ClushSettings& settings, const std::set<std::string>& nodes, NodeEvents& events);

}  // namespace store
