#include "tests/fuzz/DotReader.h"

#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/LinkModel.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

/// Takes a statement of the graph apart, token by token.
class DotScanner {
 public:
  explicit DotScanner(std::string_view text) : fText(text) {}

  /// True, and past it, when `token` comes next.
  bool Takes(std::string_view token) {
    if (fText.substr(0, token.size()) != token) return false;
    fText.remove_prefix(token.size());
    return true;
  }
  void Expect(std::string_view token) { Require(Takes(token), "the next token of the graph"); }

  std::string Word() {
    const std::size_t end = fText.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789.");
    Require(end != 0 && end != std::string_view::npos, "a word of the graph");
    return Advance(end);
  }

  /// What stands between quotes, as Graphviz shows it in a label.
  std::string Label() {
    Expect("\"");
    std::string text;
    while (!Takes("\"")) {
      Require(!fText.empty(), "a string of the graph ends");
      if (Takes("&amp;")) {
        text += '&';
        continue;
      }
      const std::string piece = Advance(1);
      Require(piece != "&", "a label of the graph holds no entity but its own");
      text += piece == "\\" ? Escaped() : piece;
    }
    return text;
  }

  bool IsAtEnd() const { return fText.empty(); }

 private:
  std::string Advance(std::size_t length) {
    const std::string piece(fText.substr(0, length));
    fText.remove_prefix(length);
    return piece;
  }

  std::string Escaped() {
    const std::string kind = Advance(1);
    if (kind == "n") return "\n";
    Require(kind == "\"" || kind == "\\", "an escape of the graph");
    return kind;
  }

  std::string_view fText;
};

/// What the statements say.
struct ReadGraph {
  /// Attributes by name, per node.
  std::map<std::string, std::map<std::string, std::string>> nodes;
  std::vector<std::pair<std::string, std::string>> edges;
};

std::map<std::string, std::string> ReadAttributes(DotScanner& statement) {
  std::map<std::string, std::string> attributes;
  while (!statement.Takes("]")) {
    if (!attributes.empty()) statement.Expect(", ");
    const std::string name = statement.Word();
    statement.Expect("=");
    const bool isWord = name == "shape" || name == "fontsize" || name == "height";
    Require(attributes.emplace(name, isWord ? statement.Word() : statement.Label()).second,
            "a node has an attribute once");
  }
  return attributes;
}

void ReadStatement(const std::string& line, ReadGraph& graph) {
  DotScanner statement(line);
  statement.Expect("  ");
  const std::string name = statement.Word();
  if (statement.Takes(" -> ")) {
    graph.edges.emplace_back(name, statement.Word());
    if (statement.Takes(" [")) ReadAttributes(statement);
  } else {
    statement.Expect(" [");
    Require(graph.nodes.emplace(name, ReadAttributes(statement)).second, "a node stands in the graph once");
  }
  statement.Expect(";");
  Require(statement.IsAtEnd(), "a statement of the graph ends its line");
}

/// The graph's own attributes are on the lines before the first statement.
ReadGraph ReadDot(const std::string& document) {
  ReadGraph graph;
  std::istringstream lines(document);
  std::string line;
  Require(std::getline(lines, line) && line == "digraph usb {", "the graph begins");
  while (std::getline(lines, line) && line != "}") {
    const bool isOfNode = line.rfind("  n", 0) == 0 && line.rfind("  node ", 0) != 0;
    const bool isOfEmptySockets = line.rfind("  f", 0) == 0;
    if (isOfNode || isOfEmptySockets) ReadStatement(line, graph);
  }
  Require(line == "}" && !std::getline(lines, line), "the graph ends the document");
  return graph;
}

std::vector<std::string> LinesOf(const std::string& label) {
  std::vector<std::string> lines;
  std::istringstream text(label);
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

/// What a node is, as the graph draws it: its class, and what identifies it. The last two lines of hubs and
/// devices are their name and facts, which begin with the id.
std::string Drawn(const std::map<std::string, std::string>& attributes) {
  constexpr std::size_t kIdLength = sizeof "ffff:ffff" - 1;
  const std::string& svgClass = attributes.at("class");
  const std::vector<std::string> lines = LinesOf(attributes.at("label"));
  Require(!lines.empty(), "a node of the graph has a label");
  if (svgClass == "controller") return "controller " + lines.back();
  if (svgClass == "hub" || svgClass == "device") {
    Require(lines.size() > 1, "a hub or device of the graph has a name and facts");
    return svgClass + " " + lines[lines.size() - 2] + " " + lines.back().substr(0, kIdLength);
  }
  return lines.front().front() == '+' ? svgClass + " " + lines.front() : svgClass;
}

std::string ExpectedNode(const LinkedItem& item) {
  if (item.kind == "port") return item.IsFree() ? "port free" : "port used";
  const std::string name = item.isRootHub ? "Root hub" : item.Name();
  return item.kind == "controller" ? item.kind + " " + name : item.kind + " " + name + " " + item.Id();
}

/// What the graph has to draw: the nodes, and the pairs of linked nodes.
struct ExpectedGraph {
  std::multiset<std::string> nodes;
  std::multiset<std::string> edges;
};

ExpectedGraph ExpectedOf(const std::vector<LinkedItem>& items) {
  std::set<std::size_t> parents;
  for (const LinkedItem& item : items) parents.insert(item.parent);
  ExpectedGraph expected;
  std::map<std::size_t, std::size_t> folded;
  for (std::size_t index = 0; index < items.size(); ++index) {
    const LinkedItem& item = items[index];
    const bool isTop = item.parent == LinkedItem::kNone;
    const bool isEmpty = item.kind == "port" && item.IsFree() && parents.count(index) == 0;
    if (isEmpty && !isTop) {
      ++folded[item.parent];
      continue;
    }
    expected.nodes.insert(ExpectedNode(item));
    if (!isTop) expected.edges.insert(ExpectedNode(items[item.parent]) + " -> " + ExpectedNode(item));
  }
  for (const auto& [hub, count] : folded) {
    const std::string node = "port free +" + std::to_string(count) + " free";
    expected.nodes.insert(node);
    expected.edges.insert(ExpectedNode(items[hub]) + " -> " + node);
  }
  return expected;
}

}  // namespace

void CheckDot(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  const ReadGraph graph = ReadDot(document);
  const ExpectedGraph expected = ExpectedOf(LinkItems(inventory));
  std::multiset<std::string> nodes;
  for (const auto& [name, attributes] : graph.nodes) nodes.insert(Drawn(attributes));
  Require(nodes == expected.nodes, "the graph has a node per item, and one for a hub's free ports");
  std::multiset<std::string> edges;
  for (const auto& [from, to] : graph.edges) {
    Require(graph.nodes.count(from) == 1 && graph.nodes.count(to) == 1, "an edge of the graph links nodes");
    edges.insert(Drawn(graph.nodes.at(from)) + " -> " + Drawn(graph.nodes.at(to)));
  }
  Require(edges == expected.edges, "the graph has an edge per link");
}

}  // namespace usbinfo_test
