#include "tests/fuzz/HtmlReader.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/LinkModel.h"
#include "tests/fuzz/Utf8.h"

using cli::PropertyId;

namespace usbinfo_test {

namespace {

using PageDocument = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;
using Visit = std::function<void(xmlNode* element)>;

std::string TakenFromPage(xmlChar* text) {
  if (text == nullptr) return std::string();
  std::string taken = reinterpret_cast<const char*>(text);
  xmlFree(text);
  return taken;
}

std::string AttributeOf(const xmlNode* node, const char* name) {
  return TakenFromPage(xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name)));
}

std::string TextOf(const xmlNode* node) {
  return TakenFromPage(xmlNodeGetContent(node));
}

bool IsNamed(const xmlNode* node, const std::string& name) {
  return reinterpret_cast<const char*>(node->name) == name;
}

bool HasClass(const xmlNode* node, const std::string& name) {
  return (" " + AttributeOf(node, "class") + " ").find(" " + name + " ") != std::string::npos;
}

void ForEachElement(xmlNode* parent, const Visit& visit) {
  for (xmlNode* node = xmlFirstElementChild(parent); node != nullptr; node = xmlNextElementSibling(node)) {
    visit(node);
    ForEachElement(node, visit);
  }
}

/// The elements right below, of that name and that class unless it is empty.
std::vector<xmlNode*> ChildrenOf(xmlNode* parent, const std::string& name,
                                 const std::string& className = {}) {
  std::vector<xmlNode*> children;
  for (xmlNode* node = xmlFirstElementChild(parent); node != nullptr; node = xmlNextElementSibling(node)) {
    if (IsNamed(node, name) && (className.empty() || HasClass(node, className))) children.push_back(node);
  }
  return children;
}

xmlNode* OnlyChildOf(xmlNode* parent, const std::string& name) {
  const std::vector<xmlNode*> children = ChildrenOf(parent, name);
  RequireCount(children.size(), 1, "elements of the page that must be there once");
  return children.front();
}

xmlNode* ItemAround(const xmlNode* node) {
  xmlNode* parent = node->parent;
  while (parent->type == XML_ELEMENT_NODE && !HasClass(parent, "item")) parent = parent->parent;
  return parent->type == XML_ELEMENT_NODE ? parent : nullptr;
}

/// What the page says of one item.
struct ReadItem {
  std::string name;
  std::string id;
  std::map<std::string, std::string> facts;
  std::size_t sockets = 0;
  std::size_t freeSockets = 0;
};

void ReadSummary(xmlNode* summary, ReadItem& item) {
  ForEachElement(summary, [&item](xmlNode* element) {
    if (HasClass(element, "identifier")) item.id = TextOf(element);
    if (!HasClass(element, "name")) return;
    for (xmlNode* const name : ChildrenOf(element, "span")) {
      if (!HasClass(name, "hub-sockets")) item.name += TextOf(name);
    }
  });
}

ReadItem ReadItemAt(xmlNode* element) {
  ReadItem item;
  xmlNode* const details = OnlyChildOf(element, "details");
  ReadSummary(OnlyChildOf(details, "summary"), item);
  for (xmlNode* const fact : ChildrenOf(OnlyChildOf(details, "dl"), "div")) {
    item.facts[TextOf(OnlyChildOf(fact, "dt"))] = TextOf(OnlyChildOf(fact, "dd"));
  }
  for (xmlNode* const list : ChildrenOf(element, "ul", "sockets")) {
    item.sockets += ChildrenOf(list, "li", "socket").size();
    item.freeSockets += ChildrenOf(list, "li", "free").size();
  }
  return item;
}

/// "device Bus 01  Device   2": what is described at an element, as no other item is.
std::string ShownAt(xmlNode* element) {
  const ReadItem item = ReadItemAt(element);
  const auto identifier = item.facts.find("DeviceID");
  const std::string kind = HasClass(element, "bus") ? "controller" : AttributeOf(element, "class").substr(5);
  return kind + " " + (identifier == item.facts.end() ? std::string() : identifier->second);
}

/// The items of an inventory, and which of them share a line of the page.
class ExpectedLines {
 public:
  explicit ExpectedLines(const cli::Inventory& inventory)
      : fItems(LinkItems(inventory)), fChildren(fItems.size()) {
    for (std::size_t index = 0; index < fItems.size(); ++index) {
      if (fItems[index].parent != LinkedItem::kNone) fChildren[fItems[index].parent].push_back(index);
    }
  }

  const std::vector<LinkedItem>& Items() const { return fItems; }
  const std::vector<std::size_t>& Children(std::size_t index) const { return fChildren[index]; }

  /// An empty port of a hub is a mark in the hub's line.
  bool IsMark(std::size_t index) const {
    const LinkedItem& item = fItems[index];
    return item.parent != LinkedItem::kNone && item.kind == "port" && fChildren[index].empty() &&
           item.IsFree();
  }
  /// What alone is plugged into a port, and a controller's only root hub.
  bool IsShownByParent(std::size_t index) const {
    const std::size_t parent = fItems[index].parent;
    if (parent == LinkedItem::kNone || fChildren[parent].size() != 1) return false;
    return fItems[parent].kind == "port" || fItems[parent].kind == "controller";
  }
  /// The item whose line shows the one at `index`.
  std::size_t LineOf(std::size_t index) const {
    return IsShownByParent(index) ? fItems[index].parent : index;
  }
  /// The item that is described in the line of the one at `index`.
  std::size_t ShownIn(std::size_t index) const {
    const bool isShared = fChildren[index].size() == 1 && IsShownByParent(fChildren[index].front());
    return isShared ? fChildren[index].front() : index;
  }
  /// As ShownAt gives it for that line.
  std::string Described(std::size_t line) const {
    const LinkedItem& shown = fItems[ShownIn(line)];
    const std::string kind = fItems[line].kind == "controller" ? "controller" : shown.kind;
    return kind + " " + AsShown(shown.item->String(PropertyId::kDeviceID));
  }

 private:
  std::vector<LinkedItem> fItems;
  std::vector<std::vector<std::size_t>> fChildren;
};

/// Compares the page's lines with the items of an inventory.
class Comparison {
 public:
  Comparison(xmlNode* root, const ExpectedLines& expected) : fExpected(expected) {
    ForEachElement(root, [this](xmlNode* element) {
      if (!HasClass(element, "item")) return;
      Require(fElements.emplace(ShownAt(element), element).second, "an item stands in the page once");
    });
  }

  void Check() const {
    std::size_t drawn = 0;
    for (std::size_t index = 0; index < fExpected.Items().size(); ++index) {
      if (fExpected.IsMark(index) || fExpected.IsShownByParent(index)) continue;
      ++drawn;
      const auto element = fElements.find(fExpected.Described(index));
      Require(element != fElements.end(), "the page has every item");
      CheckPlace(index, element->second);
      CheckItem(fExpected.ShownIn(index), element->second);
    }
    RequireCount(fElements.size(), drawn, "items of the page");
  }

 private:
  void CheckPlace(std::size_t index, const xmlNode* element) const {
    // Lines further down stand at this depth.
    constexpr std::size_t kDeepest = 31;
    std::size_t depth = 0;
    for (const xmlNode* up = element; (up = ItemAround(up)) != nullptr;) ++depth;
    if (depth >= kDeepest) return;
    xmlNode* const around = ItemAround(element);
    const std::size_t parent = fExpected.Items()[index].parent;
    if (parent == LinkedItem::kNone) return Require(around == nullptr, "an item of the page hangs on none");
    Require(around != nullptr, "an item of the page hangs on another");
    RequireEqual(ShownAt(around), fExpected.Described(fExpected.LineOf(parent)),
                 "what an item of the page hangs on");
  }

  void CheckItem(std::size_t index, xmlNode* element) const {
    const LinkedItem& item = fExpected.Items()[index];
    const ReadItem read = ReadItemAt(element);
    RequireEqual(read.name, item.kind == "port" ? (item.IsFree() ? "free" : "in use") : item.Name(),
                 "the name of an item of the page");
    const bool hasId = item.kind == "hub" || item.kind == "device";
    RequireEqual(read.id, hasId ? item.Id() : "", "the id of an item of the page");
    CheckFact(read, "Vendor", item.item->String(PropertyId::kManufacturer));
    CheckFact(read, "Serial number", item.item->String(PropertyId::kSerialNumber));
    CheckSockets(read, index);
  }

  static void CheckFact(const ReadItem& read, const char* label, const std::string& value) {
    const auto fact = read.facts.find(label);
    const std::string found = fact == read.facts.end() ? std::string() : fact->second;
    RequireEqual(found, value == "Not Available" ? "" : AsShown(value), "a fact of the page");
  }

  void CheckSockets(const ReadItem& read, std::size_t index) const {
    std::size_t ports = 0;
    std::size_t free = 0;
    for (const std::size_t child : fExpected.Children(index)) {
      if (fExpected.Items()[child].kind != "port") continue;
      ++ports;
      if (fExpected.IsMark(child)) ++free;
    }
    RequireCount(read.sockets, ports, "sockets of a hub of the page");
    RequireCount(read.freeSockets, free, "free sockets of a hub of the page");
  }

  const ExpectedLines& fExpected;
  std::map<std::string, xmlNode*> fElements;
};

/// The cells of a row of the table, with what its link leads to in the end.
using Row = std::map<std::string, std::string>;

std::vector<xmlNode*> CellsOf(xmlNode* row) {
  std::vector<xmlNode*> cells;
  for (xmlNode* cell = xmlFirstElementChild(row); cell != nullptr; cell = xmlNextElementSibling(cell)) {
    cells.push_back(cell);
  }
  return cells;
}

Row ReadRow(xmlNode* row, const std::map<std::string, xmlNode*>& targets) {
  Row read;
  for (xmlNode* const cell : CellsOf(row)) {
    const std::string column = AttributeOf(cell, "class");
    Require(IsNamed(cell, column == "name" ? "th" : "td"), "a row of the table is headed by its name");
    if (column != "place") {
      read[column] = TextOf(cell);
      continue;
    }
    const auto target = targets.find(AttributeOf(OnlyChildOf(cell, "a"), "href"));
    Require(target != targets.end() && HasClass(target->second, "item"),
            "a row of the table links to an item");
    read[column] = ShownAt(target->second);
  }
  return read;
}

std::string SpeedOf(const LinkedItem& device) {
  const char* const speeds[] = {"", "1.5 Mbit/s", "12 Mbit/s", "480 Mbit/s", "5+ Gbit/s"};
  const std::uint64_t number = device.item->Number(PropertyId::kSpeed);
  return number < std::size(speeds) ? speeds[number] : "";
}

std::string StringOf(const LinkedItem& item, PropertyId property) {
  const std::string text = item.item->String(property);
  return text == "Not Available" ? std::string() : AsShown(text);
}

Row ExpectedRow(const ExpectedLines& expected, std::size_t index) {
  const LinkedItem& item = expected.Items()[index];
  Row row = {{"name", item.Name()},
             {"vendor", StringOf(item, PropertyId::kManufacturer)},
             {"identifier", item.Id()},
             {"serial", StringOf(item, PropertyId::kSerialNumber)},
             {"place", expected.Described(expected.LineOf(index))}};
  if (item.kind == "device") row["speed"] = SpeedOf(item);
  return row;
}

std::vector<Row> ReadRows(xmlNode* root) {
  std::map<std::string, xmlNode*> targets;
  std::vector<xmlNode*> elements;
  ForEachElement(root, [&](xmlNode* element) {
    targets.emplace("#" + AttributeOf(element, "id"), element);
    if (IsNamed(element, "tr") && IsNamed(element->parent, "tbody")) elements.push_back(element);
  });
  std::vector<Row> rows;
  for (xmlNode* const element : elements) rows.push_back(ReadRow(element, targets));
  return rows;
}

/// Whether the row has all these cells.
bool Holds(const Row& row, const Row& cells) {
  return std::includes(row.begin(), row.end(), cells.begin(), cells.end());
}

/// A row for each device and each hub but root hubs, with all cells.
void CheckDeviceTable(xmlNode* root, const ExpectedLines& expected) {
  std::vector<Row> rows = ReadRows(root);
  for (std::size_t index = 0; index < expected.Items().size(); ++index) {
    const LinkedItem& item = expected.Items()[index];
    if (item.kind != "device" && (item.kind != "hub" || item.isRootHub)) continue;
    const Row cells = ExpectedRow(expected, index);
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&cells](const Row& each) { return Holds(each, cells); });
    Require(row != rows.end(), "the table has a row per hub and device");
    rows.erase(row);
  }
  Require(rows.empty(), "the table has no other row");
}

PageDocument ParsePage(const std::string& text) {
  PageDocument document(
      xmlReadMemory(text.data(), static_cast<int>(text.size()), "page", nullptr,
                    XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      &xmlFreeDoc);
  Require(document != nullptr, "the page is well-formed");
  return document;
}

void CheckAttributes(const xmlNode* element) {
  for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
    const std::string name = reinterpret_cast<const char*>(attribute->name);
    Require(name.rfind("on", 0) != 0 && name != "style" && name != "src", "the page has no such attribute");
  }
}

/// Rows and sockets lead to items, icons to their drawings, all in the page.
void CheckLinks(xmlNode* root) {
  std::set<std::string> targets;
  ForEachElement(root, [&targets](xmlNode* element) {
    const std::string id = AttributeOf(element, "id");
    const bool isDrawing = id.rfind("kind-", 0) == 0;
    Require(isDrawing == IsNamed(element, "symbol"), "the page's drawings are the symbols");
    Require(id.empty() || targets.insert("#" + id).second, "an id of the page stands in it once");
  });
  ForEachElement(root, [&targets](xmlNode* element) {
    if (!IsNamed(element, "a") && !IsNamed(element, "use")) {
      return Require(AttributeOf(element, "href").empty(), "nothing else of the page links");
    }
    const std::string link = AttributeOf(element, "href");
    const char* const form = IsNamed(element, "use") ? "#kind-" : "#i";
    Require(link.rfind(form, 0) == 0 && targets.count(link) == 1, "the page's links stay in it");
  });
}

/// Only what the page itself brings may act.
void CheckHarmless(xmlNode* root) {
  std::map<std::string, std::size_t> counts;
  ForEachElement(root, [&counts](xmlNode* element) {
    ++counts[reinterpret_cast<const char*>(element->name)];
    CheckAttributes(element);
    if (!IsNamed(element, "svg")) return;
    ForEachElement(element, [](xmlNode* drawn) {
      Require(IsNamed(drawn, "symbol") || IsNamed(drawn, "path") || IsNamed(drawn, "use"),
              "an icon of the page only draws");
    });
  });
  RequireCount(counts["style"], 1, "styles of the page");
  RequireCount(counts["script"], 1, "scripts of the page");
  for (const char* name : {"img", "image", "link", "iframe", "object", "embed", "form", "base"}) {
    RequireCount(counts[name], 0, "elements of the page that could load or send something");
  }
  CheckLinks(root);
}

}  // namespace

void CheckHtml(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  Require(document.rfind("<!DOCTYPE html>\n<html lang=\"en\">", 0) == 0, "the page begins as HTML");
  const PageDocument parsed = ParsePage(document);
  xmlNode* const root = xmlDocGetRootElement(parsed.get());
  CheckHarmless(root);
  const ExpectedLines expected(inventory);
  Comparison(root, expected).Check();
  CheckDeviceTable(root, expected);
}

}  // namespace usbinfo_test
