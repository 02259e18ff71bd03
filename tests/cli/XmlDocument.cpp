// Reading XML back; see the header. The document type below is version 2.4 of CIM-XML's, cut down to what a
// declaration of instances can hold.
#include "tests/cli/XmlDocument.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/valid.h>
#include <libxml/xpath.h>

namespace usbinfo_test {

namespace {

constexpr const char* kCimDtd = R"dtd(
<!ENTITY % CIMType "(boolean|string|char16|uint8|sint8|uint16|sint16|uint32|sint32|uint64|sint64|datetime|
                     real32|real64)">
<!ELEMENT CIM (DECLARATION)>
<!ATTLIST CIM CIMVERSION CDATA #REQUIRED DTDVERSION CDATA #REQUIRED>
<!ELEMENT DECLARATION (DECLGROUP.WITHNAME)+>
<!ELEMENT DECLGROUP.WITHNAME (LOCALNAMESPACEPATH?,VALUE.NAMEDOBJECT*)>
<!ELEMENT LOCALNAMESPACEPATH (NAMESPACE+)>
<!ELEMENT NAMESPACE EMPTY>
<!ATTLIST NAMESPACE NAME CDATA #REQUIRED>
<!ELEMENT VALUE.NAMEDOBJECT (INSTANCENAME,INSTANCE)>
<!ELEMENT INSTANCENAME (KEYBINDING*|KEYVALUE?|VALUE.REFERENCE?)>
<!ATTLIST INSTANCENAME CLASSNAME CDATA #REQUIRED>
<!ELEMENT KEYBINDING (KEYVALUE|VALUE.REFERENCE)>
<!ATTLIST KEYBINDING NAME CDATA #REQUIRED>
<!ELEMENT KEYVALUE (#PCDATA)>
<!ATTLIST KEYVALUE VALUETYPE (string|boolean|numeric) "string" TYPE %CIMType; #IMPLIED>
<!ELEMENT VALUE.REFERENCE (LOCALINSTANCEPATH|INSTANCENAME)>
<!ELEMENT LOCALINSTANCEPATH (LOCALNAMESPACEPATH,INSTANCENAME)>
<!ELEMENT INSTANCE (PROPERTY|PROPERTY.ARRAY|PROPERTY.REFERENCE)*>
<!ATTLIST INSTANCE CLASSNAME CDATA #REQUIRED>
<!ELEMENT PROPERTY (VALUE?)>
<!ATTLIST PROPERTY NAME CDATA #REQUIRED TYPE %CIMType; #REQUIRED CLASSORIGIN CDATA #IMPLIED
          PROPAGATED (true|false) "false">
<!ELEMENT PROPERTY.ARRAY (VALUE.ARRAY?)>
<!ATTLIST PROPERTY.ARRAY NAME CDATA #REQUIRED TYPE %CIMType; #REQUIRED ARRAYSIZE CDATA #IMPLIED
          CLASSORIGIN CDATA #IMPLIED PROPAGATED (true|false) "false">
<!ELEMENT PROPERTY.REFERENCE (VALUE.REFERENCE?)>
<!ATTLIST PROPERTY.REFERENCE NAME CDATA #REQUIRED REFERENCECLASS CDATA #IMPLIED CLASSORIGIN CDATA #IMPLIED
          PROPAGATED (true|false) "false">
<!ELEMENT VALUE.ARRAY (VALUE|VALUE.NULL)*>
<!ELEMENT VALUE.NULL EMPTY>
<!ELEMENT VALUE (#PCDATA)>
)dtd";

const xmlChar* Xml(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

template <typename Thing>
using Owned = std::unique_ptr<Thing, void (*)(Thing*)>;

Owned<xmlDtd> ParseDtd() {
  const std::string text = kCimDtd;
  // The parser takes the buffer over.
  xmlParserInputBuffer* const buffer =
      xmlParserInputBufferCreateMem(text.c_str(), static_cast<int>(text.size()), XML_CHAR_ENCODING_UTF8);
  return {xmlIOParseDTD(nullptr, buffer, XML_CHAR_ENCODING_UTF8), &xmlFreeDtd};
}

}  // namespace

XmlDocument::XmlDocument(const std::string& text)
    : fDocument(xmlReadMemory(text.data(), static_cast<int>(text.size()), "export", nullptr,
                              XML_PARSE_NONET | XML_PARSE_HUGE)) {
  EXPECT_TRUE(fDocument) << text.substr(0, 2000);
}

std::vector<std::string> XmlDocument::Select(const std::string& xpath) const {
  const Owned<xmlXPathContext> context(xmlXPathNewContext(fDocument.get()), &xmlXPathFreeContext);
  const Owned<xmlXPathObject> found(xmlXPathEvalExpression(Xml(xpath), context.get()), &xmlXPathFreeObject);
  std::vector<std::string> values;
  EXPECT_TRUE(found) << xpath;
  if (!found || found->nodesetval == nullptr) return values;
  for (int index = 0; index < found->nodesetval->nodeNr; ++index) {
    xmlChar* const text = xmlXPathCastNodeToString(found->nodesetval->nodeTab[index]);
    values.emplace_back(reinterpret_cast<const char*>(text));
    xmlFree(text);
  }
  return values;
}

bool XmlDocument::IsValidCim() const {
  const Owned<xmlDtd> dtd = ParseDtd();
  EXPECT_TRUE(dtd);
  const Owned<xmlValidCtxt> context(xmlNewValidCtxt(), &xmlFreeValidCtxt);
  return xmlValidateDtd(context.get(), fDocument.get(), dtd.get()) == 1;
}

}  // namespace usbinfo_test
