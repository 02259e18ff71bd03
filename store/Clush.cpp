#include "store/Clush.h"

#include <fmt/format.h>

#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/text/UserError.h"
#include "store/DocumentSplitter.h"
#include "store/LineBuffer.h"
#include "system/ChildProcess.h"

namespace store {

namespace {

using Stream = sys::ChildProcess::Stream;

/// A document and the name of its node.
constexpr std::size_t kLongestLine = DocumentSplitter::kLongestDocument + 4096;
constexpr std::string_view kExit = "exited with exit code ";
constexpr std::string_view kTimeout = "command timeout";
constexpr std::string_view kClush = "clush";

/// Runs a program of ClusterShell's; gives its exit status.
int RunProgram(std::vector<std::string> arguments,
               const std::function<void(Stream, std::string_view)>& take) {
  const std::string name = arguments.front();
  try {
    return sys::ChildProcess(std::move(arguments)).Follow(take);
  } catch (const std::system_error& error) {
    throw cli::UserError(
        fmt::format("cannot run {}: {}; install ClusterShell (the package clustershell), which collects from "
                    "other machines",
                    name, error.code().message()));
  }
}

struct NodeLine {
  std::string node;
  std::string text;
};

/// "NODE: TEXT".
std::optional<NodeLine> SplitLine(const std::string& line) {
  constexpr std::string_view kSeparator = ": ";
  const std::size_t colon = line.find(kSeparator);
  if (colon == std::string::npos) return std::nullopt;
  return NodeLine{line.substr(0, colon), line.substr(colon + kSeparator.size())};
}

/// Reads the lines of clush and calls what they mean.
class ClushOutput {
 public:
  ClushOutput(const std::set<std::string>& nodes, NodeEvents& events)
      : fNodes(nodes),
        fEvents(events),
        fOutput(kLongestLine, [this](const std::string& line, bool isCut) { TakeOutput(line, isCut); }),
        fErrors(kLongestLine, [this](const std::string& line, bool) { TakeError(line); }) {}

  void Take(Stream stream, std::string_view part) {
    (stream == Stream::kOutput ? fOutput : fErrors).Take(part);
  }

  void Finish() {
    if (!fOutput.IsEmpty()) fOutput.Finish();
    if (!fErrors.IsEmpty()) fErrors.Finish();
  }

  /// The last line that clush has written of no node.
  const std::string& LastMessage() const { return fLastMessage; }

 private:
  void TakeOutput(const std::string& line, bool isCut) {
    const std::optional<NodeLine> parts = SplitLine(line);
    if (parts && fNodes.count(parts->node) > 0) fEvents.OnOutput(parts->node, parts->text, isCut);
  }

  void TakeError(const std::string& line) {
    const std::optional<NodeLine> parts = SplitLine(line);
    if (parts && fNodes.count(parts->node) > 0) {
      fEvents.OnError(parts->node, parts->text);
    } else if (!parts || parts->node != kClush || !TakeEnd(parts->text)) {
      fLastMessage = line;
    }
  }

  /// "NODE: exited with exit code 2", "NODES: command timeout".
  bool TakeEnd(const std::string& text) {
    const std::optional<NodeLine> end = SplitLine(text);
    if (!end) return false;
    if (end->text == kTimeout) {
      for (const std::string& node : ExpandNodes({.nodes = end->node, .excluded = {}})) {
        if (fNodes.count(node) > 0) fEvents.OnTimeout(node);
      }
      return true;
    }
    if (!end->text.starts_with(kExit) || fNodes.count(end->node) == 0) return false;
    fEvents.OnExit(end->node, end->text.substr(kExit.size()));
    return true;
  }

  const std::set<std::string>& fNodes;
  NodeEvents& fEvents;
  LineBuffer fOutput;
  LineBuffer fErrors;
  std::string fLastMessage;
};

void AddExcluded(std::vector<std::string>& arguments, const NodeSelection& selection) {
  if (!selection.excluded.empty()) arguments.insert(arguments.end(), {"-x", selection.excluded});
}

}  // namespace

std::set<std::string> ExpandNodes(const NodeSelection& selection) {
  std::vector<std::string> arguments = {"nodeset", "-e"};
  AddExcluded(arguments, selection);
  arguments.insert(arguments.end(), {"--", selection.nodes});
  std::string output;
  std::string errors;
  const int status = RunProgram(std::move(arguments), [&](Stream stream, std::string_view part) {
    (stream == Stream::kOutput ? output : errors) += part;
  });
  if (status != 0) {
    throw cli::UserError(
        fmt::format("there are no nodes {}: {}", selection.nodes, errors.substr(0, errors.find('\n'))));
  }
  std::istringstream names(output);
  std::set<std::string> nodes;
  for (std::string name; names >> name;) nodes.insert(name);
  return nodes;
}

void RunClush(const ClushSettings& settings, const std::set<std::string>& nodes, NodeEvents& events) {
  std::vector<std::string> arguments = {"clush", "--color=never", "-n", "-q", "-w", settings.selection.nodes};
  AddExcluded(arguments, settings.selection);
  arguments.insert(arguments.end(), {"-u", std::to_string(settings.timeout)});
  if (!settings.fanout.empty()) arguments.insert(arguments.end(), {"-f", settings.fanout});
  arguments.insert(arguments.end(), {"--", settings.command});
  ClushOutput output(nodes, events);
  const int status = RunProgram(std::move(arguments),
                                [&](Stream stream, std::string_view part) { output.Take(stream, part); });
  output.Finish();
  if (status == 0) return;
  throw cli::UserError(fmt::format("clush ended with status {}: {}", status, output.LastMessage()));
}

}  // namespace store
