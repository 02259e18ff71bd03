#include "tests/fuzz/DotReader.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string_view>

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
  std::multiset<std::string> edges;
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
    graph.edges.insert(name + " " + statement.Word());
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
    if (line.rfind("  n", 0) == 0 && line.rfind("  node ", 0) != 0) ReadStatement(line, graph);
  }
  Require(line == "}" && !std::getline(lines, line), "the graph ends the document");
  return graph;
}

bool HasLine(const std::string& label, const std::string& line) {
  return ("\n" + label + "\n").find("\n" + line + "\n") != std::string::npos;
}

void CheckNode(const LinkedItem& item, std::map<std::string, std::string> attributes) {
  const bool isPort = item.kind == "port";
  const std::string svgClass = isPort ? (item.IsFree() ? "port free" : "port used") : item.kind;
  RequireEqual(attributes["class"], svgClass, "the class of a node of the graph");
  const std::string& label = attributes["label"];
  if (!isPort && !item.isRootHub) Require(HasLine(label, item.Name()), "a node of the graph has its name");
  const bool hasId = item.kind == "hub" || item.kind == "device";
  if (hasId) Require(label.find("\n" + item.Id()) != std::string::npos, "a node of the graph has its id");
}

}  // namespace

void CheckDot(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  const ReadGraph graph = ReadDot(document);
  const std::vector<LinkedItem> items = LinkItems(inventory);
  RequireCount(graph.nodes.size(), items.size(), "nodes of the graph");
  std::multiset<std::string> links;
  for (std::size_t index = 0; index < items.size(); ++index) {
    const std::string name = "n" + std::to_string(index);
    const auto node = graph.nodes.find(name);
    Require(node != graph.nodes.end(), "the graph has a node per item");
    CheckNode(items[index], node->second);
    if (items[index].parent != LinkedItem::kNone) {
      links.insert("n" + std::to_string(items[index].parent) + " " + name);
    }
  }
  Require(graph.edges == links, "the graph has an edge per link");
}

}  // namespace usbinfo_test
