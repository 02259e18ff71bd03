// Writes an XML document sequentially: an element per line, indented by a blank a level, unless it has text.
// It keeps the elements balanced and makes any text valid in XML 1.0.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

class XmlWriter {
 public:
  /// Begins a document in UTF-8.
  XmlWriter();

  /// An element around what `body` writes, never self-closed.
  template <typename Body>
  void Element(const char* name, Body body) {
    Start(name);
    body();
    End(name);
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
  /// What the open element has so far.
  enum class Content { kAttributes, kText, kElements };

  void Start(const char* element);
  void End(const char* element);
  /// Ends the open element's tag, if that has not been done.
  void EndTag();
  void BeginLine();

  std::string fText;
  std::size_t fDepth = 0;
  Content fContent = Content::kElements;
};

}  // namespace cli
