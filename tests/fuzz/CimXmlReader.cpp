#include "tests/fuzz/CimXmlReader.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <map>
#include <memory>

#include "tests/cli/support/CimDtd.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/ReadPath.h"
#include "tests/fuzz/Utf8.h"

using schema::PropertySchema;
using Type = NKESTA20::TCIMValue::TCIMType;

namespace usbinfo_test {

namespace {

using CimDocument = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;

/// Steps through the elements below one element, in order.
class Children {
 public:
  Children(const xmlNode* parent, const char* name) : fNext(xmlFirstElementChild(Mutable(parent))) {
    RequireEqual(NameOf(parent), name, "an element of the XML document");
  }

  const xmlNode* Next() {
    Require(fNext != nullptr, "the XML document has all its elements");
    const xmlNode* const node = fNext;
    fNext = xmlNextElementSibling(fNext);
    return node;
  }
  void RequireEnd() const { Require(fNext == nullptr, "the XML document has no element too many"); }

 private:
  static std::string NameOf(const xmlNode* node) { return reinterpret_cast<const char*>(node->name); }
  // The library only reads, but says so nowhere.
  static xmlNode* Mutable(const xmlNode* node) { return const_cast<xmlNode*>(node); }

  xmlNode* fNext;
};

std::string Taken(xmlChar* text) {
  if (text == nullptr) return std::string();
  std::string taken = reinterpret_cast<const char*>(text);
  xmlFree(text);
  return taken;
}

void CheckAttribute(const xmlNode* node, const char* name, const std::string& expected) {
  const std::string found = Taken(xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name)));
  RequireEqual(found, expected, "an attribute of the XML document");
}

void CheckCimText(const xmlNode* node, const char* name, const std::string& expected) {
  Children(node, name).RequireEnd();
  RequireEqual(Taken(xmlNodeGetContent(node)), AsXmlHoldsIt(expected), "a text of the XML document");
}

std::string TypeNameOf(const PropertySchema& property) {
  static const std::map<Type::ECIMType, std::string> names = {
      {Type::kUint8, "uint8"},   {Type::kUint16, "uint16"},      {Type::kUint64, "uint64"},
      {Type::kString, "string"}, {Type::kStringArray, "string"}, {Type::kReference, "reference"}};
  return names.at(property.type);
}

void CheckNamespace(const xmlNode* node) {
  Children parts(node, "LOCALNAMESPACEPATH");
  CheckAttribute(parts.Next(), "NAME", "root");
  CheckAttribute(parts.Next(), "NAME", "cimv2");
  parts.RequireEnd();
}

/// The only element of a key binding of that name.
const xmlNode* KeyOf(const xmlNode* binding, const std::string& name) {
  CheckAttribute(binding, "NAME", name);
  Children content(binding, "KEYBINDING");
  const xmlNode* const key = content.Next();
  content.RequireEnd();
  return key;
}

void CheckStringKey(const xmlNode* key, const std::string& value) {
  CheckAttribute(key, "VALUETYPE", "string");
  CheckAttribute(key, "TYPE", "string");
  CheckCimText(key, "KEYVALUE", value);
}

void CheckReference(const xmlNode* node, const ReadPath& path) {
  Children reference(node, "VALUE.REFERENCE");
  Children local(reference.Next(), "LOCALINSTANCEPATH");
  reference.RequireEnd();
  CheckNamespace(local.Next());
  const xmlNode* const instanceName = local.Next();
  local.RequireEnd();
  CheckAttribute(instanceName, "CLASSNAME", path.className);
  Children bindings(instanceName, "INSTANCENAME");
  for (const auto& [name, value] : path.keys) CheckStringKey(KeyOf(bindings.Next(), name), value);
  bindings.RequireEnd();
}

void CheckInstanceName(const xmlNode* node, const cli::Item& item) {
  Children bindings(node, "INSTANCENAME");
  CheckAttribute(node, "CLASSNAME", item.Schema().name);
  for (const PropertySchema& property : item.Schema().properties) {
    if (!property.isKey) continue;
    const xmlNode* const key = KeyOf(bindings.Next(), property.name);
    const std::string& value = item.String(property.id);
    if (property.type == Type::kReference) {
      CheckReference(key, ParsePath(value));
    } else {
      CheckStringKey(key, value);
    }
  }
  bindings.RequireEnd();
}

void CheckArray(const xmlNode* node, const std::vector<std::string>& texts) {
  Children property(node, "PROPERTY.ARRAY");
  Children elements(property.Next(), "VALUE.ARRAY");
  property.RequireEnd();
  for (const std::string& text : texts) CheckCimText(elements.Next(), "VALUE", text);
  elements.RequireEnd();
}

void CheckProperty(const xmlNode* node, const PropertySchema& property, const cli::Value& value) {
  CheckAttribute(node, "NAME", property.name);
  if (const auto* const reference = std::get_if<cli::Reference>(&value)) {
    const ReadPath path = ParsePath(reference->path);
    CheckAttribute(node, "REFERENCECLASS", path.className);
    return CheckReference(Children(node, "PROPERTY.REFERENCE").Next(), path);
  }
  CheckAttribute(node, "TYPE", TypeNameOf(property));
  if (const auto* const texts = std::get_if<std::vector<std::string>>(&value))
    return CheckArray(node, *texts);
  Children content(node, "PROPERTY");
  CheckCimText(content.Next(), "VALUE", cli::TextOf(value));
  content.RequireEnd();
}

void CheckCimItem(const xmlNode* node, const cli::Item& item) {
  Children object(node, "VALUE.NAMEDOBJECT");
  CheckInstanceName(object.Next(), item);
  const xmlNode* const content = object.Next();
  object.RequireEnd();
  CheckAttribute(content, "CLASSNAME", item.Schema().name);
  Children properties(content, "INSTANCE");
  for (std::size_t index = 0; index < item.Schema().properties.size(); ++index) {
    if (item.At(index).index() == 0) continue;
    CheckProperty(properties.Next(), item.Schema().properties[index], item.At(index));
  }
  properties.RequireEnd();
}

CimDocument ParseCim(const std::string& text) {
  CimDocument document(
      xmlReadMemory(text.data(), static_cast<int>(text.size()), "export", nullptr,
                    XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      &xmlFreeDoc);
  Require(document != nullptr, "the XML document is well-formed");
  return document;
}

void Silence(void*, const char*, ...) {}

void CheckValidity(xmlDoc* document) {
  static const std::unique_ptr<xmlDtd, void (*)(xmlDtd*)> dtd(ParseCimDtd(), &xmlFreeDtd);
  const std::unique_ptr<xmlValidCtxt, void (*)(xmlValidCtxt*)> context(xmlNewValidCtxt(), &xmlFreeValidCtxt);
  // Errors are reported by the check, so the library prints none.
  context->error = Silence;
  Require(xmlValidateDtd(context.get(), document, dtd.get()) == 1, "the XML document is valid");
}

}  // namespace

std::string AsXmlHoldsIt(const std::string& text) {
  std::string held;
  const std::string decoded = ReplaceBrokenUtf8(text);
  for (std::size_t at = 0; at < decoded.size(); ++at) {
    const auto byte = static_cast<unsigned char>(decoded[at]);
    const bool isControl = byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
    const bool isNoCharacter =
        decoded.compare(at, 3, "\xEF\xBF\xBE") == 0 || decoded.compare(at, 3, "\xEF\xBF\xBF") == 0;
    held += isControl || isNoCharacter ? "\xEF\xBF\xBD" : decoded.substr(at, 1);
    if (isNoCharacter) at += 2;
  }
  return held;
}

void CheckCimXml(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, true);
  const CimDocument parsed = ParseCim(document);
  CheckValidity(parsed.get());
  Children cim(xmlDocGetRootElement(parsed.get()), "CIM");
  Children declaration(cim.Next(), "DECLARATION");
  Children group(declaration.Next(), "DECLGROUP.WITHNAME");
  declaration.RequireEnd();
  CheckNamespace(group.Next());
  for (const cli::ItemsOfClass& ofClass : inventory.Classes()) {
    for (const cli::Item& item : ofClass.items) CheckCimItem(group.Next(), item);
  }
  group.RequireEnd();
}

}  // namespace usbinfo_test
