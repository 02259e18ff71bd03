#include "store/CollectCommand.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "cli/option/UsageError.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "store/DatabaseLocation.h"
#include "store/Loader.h"
#include "store/Message.h"
#include "store/NodeTable.h"
#include "store/OpenStore.h"
#include "store/ProgressBar.h"

namespace store {

namespace {

/// What came of a node.
struct NodeState {
  bool isLoaded = false;
  bool hasEnded = false;
  /// Why its inventory was refused.
  std::optional<std::string> refusal;
  /// The last line that is no inventory, and the last one of standard error.
  std::string said;
  std::string error;
  /// Other than 0.
  std::string exitStatus;
  bool isTimedOut = false;
};

std::string Reason(const NodeState& state, Seconds timeout) {
  if (state.refusal) return *state.refusal;
  if (state.isTimedOut) return fmt::format("gave no inventory within {} seconds", timeout);
  if (!state.exitStatus.empty()) {
    const std::string& text = state.error.empty() ? state.said : state.error;
    return fmt::format("ended with status {}{}{}", state.exitStatus, text.empty() ? "" : ": ", text);
  }
  if (!state.said.empty()) return "printed no inventory: " + state.said;
  return state.error.empty() ? "printed nothing" : "printed nothing but an error: " + state.error;
}

std::string ParseFanout(const std::string& text) {
  const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  if (!isNumber || text == "0") throw cli::UsageError("needs a number above 0");
  return text;
}

/// clush takes 0 for no limit.
Seconds ParseTimeout(const std::string& text) {
  const Seconds timeout = ParseDuration(text);
  if (timeout == 0) throw cli::UsageError("needs at least 1s");
  return timeout;
}

/// Loads what the nodes print.
class Collection : public NodeEvents {
 public:
  Collection(Database& database, const Clock& clock, const std::set<std::string>& nodes)
      : fDatabase(database),
        fClock(clock),
        fLoader(clock, {.collected = clock.Now(), .permissions = {}}),
        fProgress(nodes.size()) {
    for (const std::string& node : nodes) fNodes.emplace(node, NodeState{});
    fProgress.Show(fLoaded, fFailed);
  }

  void OnOutput(const std::string& node, const std::string& line, bool isCut) override {
    NodeState& state = fNodes.at(node);
    if (line.empty() || line.front() != '{') {
      if (!line.empty()) state.said = line.substr(0, kLongestSaid);
      return;
    }
    state.refusal = fLoader.Load(fDatabase, {.text = line, .isTooLong = isCut}, node);
    if (state.refusal || state.isLoaded) return;
    state.isLoaded = true;
    ++fLoaded;
    RecordNode(fDatabase, node, fLoader.LastHost(), fClock.Now());
    fProgress.Show(fLoaded, fFailed);
  }

  void OnError(const std::string& node, const std::string& line) override {
    if (!line.empty()) fNodes.at(node).error = line.substr(0, kLongestSaid);
  }

  void OnExit(const std::string& node, const std::string& status) override {
    fNodes.at(node).exitStatus = status;
    CountFailure(fNodes.at(node));
  }

  void OnTimeout(const std::string& node) override {
    fNodes.at(node).isTimedOut = true;
    CountFailure(fNodes.at(node));
  }

  /// Records the nodes that gave no inventory. Gives the reason of each.
  std::map<std::string, std::string> Finish(Seconds timeout) {
    std::map<std::string, std::string> failures;
    for (const auto& [node, state] : fNodes) {
      if (state.isLoaded && !state.refusal) continue;
      const std::string reason = Reason(state, timeout);
      RecordFailure(fDatabase, node, reason, fClock.Now());
      failures.emplace(node, reason);
    }
    return failures;
  }

  const LoadCounts& Counts() const { return fLoader.Counts(); }

 private:
  static constexpr std::size_t kLongestSaid = 300;

  /// For the progress only: an inventory may still be on its way.
  void CountFailure(NodeState& state) {
    if (!state.isLoaded && !state.hasEnded) ++fFailed;
    state.hasEnded = true;
    fProgress.Show(fLoaded, fFailed);
  }

  Database& fDatabase;
  const Clock& fClock;
  Loader fLoader;
  std::map<std::string, NodeState> fNodes;
  std::size_t fLoaded = 0;
  std::size_t fFailed = 0;
  ProgressBar fProgress;
};

std::vector<cli::Option> NodeOptions(NodeSelection& selection) {
  return {
      {.names = {"-w", "--nodes"},
       .value = "NODES",
       .help = "The machines, as ClusterShell names them: web[1-9],@racks:3",
       .manual =
           R"(The machines to collect from, as ClusterShell names them: a list with commas of names, of ranges
such as
.Li web[1-9] ,
and of its groups such as
.Li @racks:3 .)",
       .store = cli::StoreText(selection.nodes)},
      {.names = {"-x", "--exclude"},
       .value = "NODES",
       .help = "Machines to leave out",
       .manual = "The machines to leave out, in the same form.",
       .store = cli::StoreText(selection.excluded)}};
}

std::vector<cli::Option> ClushOptions(ClushSettings& clush) {
  return {{.names = {"-f", "--fanout"},
           .value = "NUMBER",
           .help = "How many machines at a time",
           .defaultValue = "as ClusterShell is configured",
           .manual = "How many machines to ask at a time.",
           .store = StoreParsed(clush.fanout, ParseFanout)},
          {.names = {"--timeout"},
           .value = "DURATION",
           .help = "How long a machine may take",
           .defaultValue = "60s",
           .manual = "How long a machine may take, such as\n.Li 90s\nor\n.Li 5m .",
           .store = StoreParsed(clush.timeout, ParseTimeout)},
          {.names = {"--command"},
           .value = "COMMAND",
           .help = "What to run on the machines",
           .defaultValue = clush.command,
           .manual = R"(What to run on the machines.
It prints the inventory on one line.)",
           .store = cli::StoreText(clush.command)}};
}

}  // namespace

std::vector<cli::Option> CollectOptionTable(CollectOptions& options) {
  std::vector<cli::Option> table = NodeOptions(options.clush.selection);
  const std::vector<cli::Option> ofClush = ClushOptions(options.clush);
  table.insert(table.end(), ofClush.begin(), ofClush.end());
  table.push_back(DatabaseOption(options.database));
  return WithListOptions(std::move(table), options.list);
}

void CheckCollect(const CollectOptions& options) {
  if (options.clush.selection.nodes.empty()) throw cli::UsageError("name the machines with -w NODES");
}

int RunCollect(const CollectOptions& options, const Clock& clock) {
  const DatabaseLocation location = FindDatabase(options.database, options.list.output);
  const std::set<std::string> nodes = ExpandNodes(options.clush.selection);
  const auto database = OpenStore(location, Access::kCreating);
  std::map<std::string, std::string> failures;
  LoadCounts counts;
  {
    Collection collection(*database, clock, nodes);
    RunClush(options.clush, nodes, collection);
    failures = collection.Finish(options.clush.timeout);
    counts = collection.Counts();
  }
  for (const auto& [node, reason] : failures) PrintMessage(fmt::format("{}: {}", node, reason));
  PrintCounts("collected",
              {{"changed", counts.changed},
               {"unchanged", counts.unchanged},
               {"known", counts.known},
               {"late", counts.late},
               {"failed", failures.size()}},
              options.list);
  return failures.empty() ? cli::kPrinted : cli::kRefused;
}

}  // namespace store
