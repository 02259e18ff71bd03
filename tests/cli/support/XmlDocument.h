// An XML text read back with libxml2, asked with XPath and held against a document type.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <vector>

namespace usbinfo_test {

class XmlDocument {
 public:
  /// Fails the test when `text` is not well-formed.
  explicit XmlDocument(const std::string& text);

  /// The string value of every node that `xpath` selects, in document order; the test fails for an invalid
  /// expression.
  std::vector<std::string> Select(const std::string& xpath) const;
  std::size_t Count(const std::string& xpath) const { return Select(xpath).size(); }

  /// True when the document is valid against the subset of the CIM-XML document type that exports use.
  bool IsValidCim() const;

 private:
  struct Deleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
  };

  std::unique_ptr<xmlDoc, Deleter> fDocument;
};

}  // namespace usbinfo_test
