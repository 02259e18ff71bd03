#include "tests/fuzz/HtmlReader.h"

#include <libxml/parser.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <sstream>

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
    if (HasClass(element, "id")) item.id = TextOf(element);
    if (!HasClass(element, "name")) return;
    for (xmlNode* const name : ChildrenOf(element, "span")) {
      if (!HasClass(name, "free-ports")) item.name += TextOf(name);
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

/// Compares the page with the items of an inventory.
class Comparison {
 public:
  Comparison(xmlNode* root, const cli::Inventory& inventory)
      : fItems(LinkItems(inventory)), fChildren(fItems.size()) {
    for (std::size_t index = 0; index < fItems.size(); ++index) {
      if (fItems[index].parent != LinkedItem::kNone) fChildren[fItems[index].parent].push_back(index);
    }
    ForEachElement(root, [this](xmlNode* element) {
      const std::string id = AttributeOf(element, "id");
      if (!HasClass(element, "item") || HasClass(element, "unlinked")) return;
      Require(fElements.emplace(id, element).second, "an item stands in the page once");
    });
  }

  void Check() const {
    std::size_t drawn = 0;
    for (std::size_t index = 0; index < fItems.size(); ++index) {
      if (IsSocketOnly(index) || IsShownByPort(index)) continue;
      ++drawn;
      const auto element = fElements.find(Anchor(index));
      Require(element != fElements.end(), "the page has every item");
      CheckPlace(index, element->second);
      const auto& children = fChildren[index];
      const bool isPlug = fItems[index].kind == "port" && children.size() == 1;
      CheckItem(isPlug ? children.front() : index, element->second);
    }
    RequireCount(fElements.size(), drawn, "items of the page");
  }

 private:
  static std::string Anchor(std::size_t index) { return "i" + std::to_string(index); }

  bool IsSocketOnly(std::size_t index) const {
    const LinkedItem& item = fItems[index];
    return item.parent != LinkedItem::kNone && item.kind == "port" && fChildren[index].empty() &&
           item.IsFree();
  }
  /// An item that alone is plugged into a port.
  bool IsShownByPort(std::size_t index) const {
    const std::size_t parent = fItems[index].parent;
    return parent != LinkedItem::kNone && fItems[parent].kind == "port" && fChildren[parent].size() == 1;
  }

  void CheckPlace(std::size_t index, const xmlNode* element) const {
    constexpr std::size_t kDeepest = 32;
    std::size_t depth = 0;
    for (const xmlNode* up = element; (up = ItemAround(up)) != nullptr;) ++depth;
    if (depth >= kDeepest) return;
    const xmlNode* const around = ItemAround(element);
    const std::size_t parent = fItems[index].parent;
    if (parent == LinkedItem::kNone) {
      return Require(around == nullptr || HasClass(around, "unlinked"), "an item of the page hangs on none");
    }
    const std::size_t drawnParent = IsShownByPort(parent) ? fItems[parent].parent : parent;
    Require(around != nullptr, "an item of the page hangs on another");
    RequireEqual(AttributeOf(around, "id"), Anchor(drawnParent), "what an item of the page hangs on");
  }

  void CheckItem(std::size_t index, xmlNode* element) const {
    const LinkedItem& item = fItems[index];
    Require(HasClass(element, item.kind) || HasClass(element, "bus"), "the class of an item of the page");
    const ReadItem read = ReadItemAt(element);
    const std::string name = item.kind == "port" ? (item.IsFree() ? "free" : "in use") : item.Name();
    RequireEqual(read.name, item.isRootHub ? "" : name, "the name of an item of the page");
    const bool hasId = item.kind == "hub" || item.kind == "device";
    RequireEqual(read.id, hasId ? item.Id() : "", "the id of an item of the page");
    CheckFact(read, "Address", item.item->String(PropertyId::kDeviceID));
    CheckFact(read, "Manufacturer", item.item->String(PropertyId::kManufacturer));
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
    for (const std::size_t child : fChildren[index]) {
      if (fItems[child].kind != "port") continue;
      ++ports;
      if (IsSocketOnly(child)) ++free;
    }
    RequireCount(read.sockets, ports, "sockets of a hub of the page");
    RequireCount(read.freeSockets, free, "free sockets of a hub of the page");
  }

  std::vector<LinkedItem> fItems;
  std::vector<std::vector<std::size_t>> fChildren;
  std::map<std::string, xmlNode*> fElements;
};

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
    const std::string value = AttributeOf(element, name.c_str());
    Require(name != "href" || value.rfind("#i", 0) == 0, "the page's links stay in it");
  }
}

/// Only what the page itself brings may act.
void CheckHarmless(xmlNode* root) {
  std::map<std::string, std::size_t> counts;
  ForEachElement(root, [&counts](xmlNode* element) {
    ++counts[reinterpret_cast<const char*>(element->name)];
    CheckAttributes(element);
  });
  RequireCount(counts["style"], 1, "styles of the page");
  RequireCount(counts["script"], 1, "scripts of the page");
  for (const char* name : {"img", "link", "iframe", "object", "form", "base", "svg"}) {
    RequireCount(counts[name], 0, "elements of the page that could load or send something");
  }
}

}  // namespace

void CheckHtml(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  Require(document.rfind("<!DOCTYPE html>\n<html lang=\"en\">", 0) == 0, "the page begins as HTML");
  const PageDocument parsed = ParsePage(document);
  xmlNode* const root = xmlDocGetRootElement(parsed.get());
  CheckHarmless(root);
  Comparison(root, inventory).Check();
}

}  // namespace usbinfo_test
