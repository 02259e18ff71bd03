#include "tests/fuzz/CimXmlReader.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <map>
#include <memory>

#include "standin/ValueView.h"
#include "tests/cli/support/CimDtd.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using Type = TCIMValue::TCIMType;

namespace usbinfo_test {

namespace {

using Document = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;

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

void CheckText(const xmlNode* node, const char* name, const std::string& expected) {
  Children(node, name).RequireEnd();
  RequireEqual(Taken(xmlNodeGetContent(node)), AsXmlHoldsIt(expected), "a text of the XML document");
}

std::string TypeNameOf(const TCIMValue& value) {
  static const std::map<Type::ECIMType, std::string> names = {
      {Type::kUint8, "uint8"},   {Type::kUint16, "uint16"},      {Type::kUint64, "uint64"},
      {Type::kString, "string"}, {Type::kStringArray, "string"}, {Type::kReference, "reference"}};
  return names.at(standin::TypeOf(value));
}

void CheckNamespace(const xmlNode* node) {
  Children parts(node, "LOCALNAMESPACEPATH");
  CheckAttribute(parts.Next(), "NAME", "root");
  CheckAttribute(parts.Next(), "NAME", "cimv2");
  parts.RequireEnd();
}

void CheckInstanceName(const xmlNode* node, const TCIMReference& path);

void CheckReference(const xmlNode* node, const TCIMReference& path) {
  Children reference(node, "VALUE.REFERENCE");
  Children local(reference.Next(), "LOCALINSTANCEPATH");
  CheckNamespace(local.Next());
  CheckInstanceName(local.Next(), path);
}

void CheckInstanceName(const xmlNode* node, const TCIMReference& path) {
  Children bindings(node, "INSTANCENAME");
  CheckAttribute(node, "CLASSNAME", standin::ClassNameOf(path));
  for (const auto& [name, value] : standin::KeysOf(path)) {
    const xmlNode* const binding = bindings.Next();
    CheckAttribute(binding, "NAME", name);
    Children content(binding, "KEYBINDING");
    const xmlNode* const key = content.Next();
    content.RequireEnd();
    if (standin::TypeOf(value) == Type::kReference) {
      CheckReference(key, standin::ReferenceOf(value));
      continue;
    }
    CheckAttribute(key, "VALUETYPE", "string");
    CheckAttribute(key, "TYPE", TypeNameOf(value));
    CheckText(key, "KEYVALUE", standin::TextOf(value));
  }
  bindings.RequireEnd();
}

void CheckArray(const xmlNode* node, const TCIMValue& value) {
  Children property(node, "PROPERTY.ARRAY");
  Children elements(property.Next(), "VALUE.ARRAY");
  property.RequireEnd();
  for (const std::string& element : standin::StringsOf(value)) CheckText(elements.Next(), "VALUE", element);
  elements.RequireEnd();
}

void CheckProperty(const xmlNode* node, const std::string& name, const TCIMValue& value) {
  CheckAttribute(node, "NAME", name);
  if (standin::TypeOf(value) == Type::kReference) {
    CheckAttribute(node, "REFERENCECLASS", standin::ClassNameOf(standin::ReferenceOf(value)));
    return CheckReference(Children(node, "PROPERTY.REFERENCE").Next(), standin::ReferenceOf(value));
  }
  CheckAttribute(node, "TYPE", TypeNameOf(value));
  if (standin::TypeOf(value) == Type::kStringArray) return CheckArray(node, value);
  Children property(node, "PROPERTY");
  CheckText(property.Next(), "VALUE", standin::TextOf(value));
  property.RequireEnd();
}

void CheckInstance(const xmlNode* node, const std::string& className, const cli::InstanceView& instance) {
  Children object(node, "VALUE.NAMEDOBJECT");
  CheckInstanceName(object.Next(), instance.Path());
  const xmlNode* const content = object.Next();
  object.RequireEnd();
  CheckAttribute(content, "CLASSNAME", className);
  Children properties(content, "INSTANCE");
  for (const auto& [name, value] : instance.Properties()) {
    CheckProperty(properties.Next(), name, value);
  }
  properties.RequireEnd();
}

Document Parse(const std::string& text) {
  Document document(xmlReadMemory(text.data(), static_cast<int>(text.size()), "export", nullptr,
                                  XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
                    &xmlFreeDoc);
  Require(document != nullptr, "the XML document is well-formed");
  return document;
}

void Silence(void*, const char*, ...) {}

void CheckValidity(xmlDoc* document) {
  static const std::unique_ptr<xmlDtd, void (*)(xmlDtd*)> dtd(ParseCimDtd(), &xmlFreeDtd);
  const std::unique_ptr<xmlValidCtxt, void (*)(xmlValidCtxt*)> context(xmlNewValidCtxt(), &xmlFreeValidCtxt);
  // The check tells; the library need not.
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
  const Document parsed = Parse(document);
  CheckValidity(parsed.get());
  Children cim(xmlDocGetRootElement(parsed.get()), "CIM");
  Children declaration(cim.Next(), "DECLARATION");
  Children group(declaration.Next(), "DECLGROUP.WITHNAME");
  declaration.RequireEnd();
  CheckNamespace(group.Next());
  for (const cli::ClassView& view : inventory.Classes()) {
    for (const cli::InstanceView& instance : view.instances) {
      CheckInstance(group.Next(), view.schema.name, instance);
    }
  }
  group.RequireEnd();
}

}  // namespace usbinfo_test
