#include "tests/cli/support/XmlDocument.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/valid.h>
#include <libxml/xpath.h>

#include "tests/cli/support/CimDtd.h"

namespace usbinfo_test {

namespace {

const xmlChar* Xml(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

template <typename Object>
using Owned = std::unique_ptr<Object, void (*)(Object*)>;

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
  const Owned<xmlDtd> dtd(ParseCimDtd(), &xmlFreeDtd);
  EXPECT_TRUE(dtd);
  const Owned<xmlValidCtxt> context(xmlNewValidCtxt(), &xmlFreeValidCtxt);
  return xmlValidateDtd(context.get(), fDocument.get(), dtd.get()) == 1;
}

}  // namespace usbinfo_test
