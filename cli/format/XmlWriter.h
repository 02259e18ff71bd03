// Writes an XML document sequentially through tinyxml2's printer. It keeps the elements balanced and makes
// any text valid in XML 1.0.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace cli {

class XmlWriter {
 public:
  /// Begins a document in UTF-8.
  XmlWriter();
  XmlWriter(const XmlWriter&) = delete;
  XmlWriter& operator=(const XmlWriter&) = delete;
  ~XmlWriter();

  /// An element around what `body` writes, never self-closed.
  template <typename Body>
  void Element(const char* name, Body body) {
    Start(name);
    body();
    End();
  }
  /// An element that contains only text.
  void TextElement(const char* name, std::string_view text) {
    Element(name, [&] { Text(text); });
  }
  /// Only at the beginning of an element's body.
  void Attribute(const char* name, std::string_view value);
  /// Text as the content of the open element. What XML forbids becomes U+FFFD; unprintable characters
  /// (cli/text/Unprintable.h) that it allows are written as character references, so that none reaches a
  /// terminal.
  void Text(std::string_view text);

  /// Ends the document and gives its text.
  std::string Finish();

 private:
  class Printer;

  void Start(const char* element);
  void End();

  std::unique_ptr<Printer> fPrinter;
  bool fIsElementEmpty = false;
};

}  // namespace cli
