// A thin owner of libxml2's text writer: it keeps the elements balanced, turns failures into exceptions and
// makes any text fit for XML 1.0.
#pragma once

#include <libxml/xmlwriter.h>

#include <memory>
#include <string>

namespace cli {

class XmlWriter {
 public:
  /// Begins a document in UTF-8. All operations throw std::bad_alloc when the writer fails.
  XmlWriter();

  /// An element around what `body` writes.
  template <typename Body>
  void Element(const char* name, Body body) {
    Start(name);
    body();
    End();
  }
  /// An element with nothing but text in it, never self-closed.
  void TextElement(const char* name, const std::string& text) {
    Element(name, [&] { Text(text); });
  }
  /// Only at the beginning of an element's body.
  void Attribute(const char* name, const std::string& value);
  /// Text as the content of the open element. What XML forbids becomes U+FFFD; control characters that it
  /// allows are written as character references, so that none reaches a terminal.
  void Text(const std::string& text);

  /// Ends the document and gives its text.
  std::string Finish();

 private:
  struct Deleter {
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    void operator()(xmlTextWriter* writer) const { xmlFreeTextWriter(writer); }
  };

  void Start(const char* element);
  void End();
  void WriteText(const std::string& text);

  std::unique_ptr<xmlBuffer, Deleter> fBuffer;
  std::unique_ptr<xmlTextWriter, Deleter> fWriter;
};

}  // namespace cli
