#include "cli/format/html/HtmlWriter.h"

#include <string_view>

#include "cli/text/MapCharacters.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

void AppendMarkup(const Character& character, bool /*isUnprintable*/, std::string& out) {
  switch (character.code) {
    case U'&':
      out += "&amp;";
      return;
    case U'<':
      out += "&lt;";
      return;
    case U'>':
      out += "&gt;";
      return;
    case U'"':
      out += "&quot;";
      return;
    case U'\'':
      out += "&#39;";
      return;
    default:
      out += character.bytes;
  }
}

void AppendEscaped(std::string_view text, std::string& out) {
  AppendMapped(EscapeForDocument(text), AppendMarkup, out);
}

}  // namespace

void HtmlWriter::Tag(const char* element, const Attributes& attributes, const char* end) {
  fDocument.append("<").append(element);
  for (const auto& [name, value] : attributes) {
    fDocument.append(" ").append(name).append("=\"");
    AppendEscaped(value, fDocument);
    fDocument += '"';
  }
  fDocument += end;
}

void HtmlWriter::Open(const char* element, const Attributes& attributes) {
  // Inside a line of text, a line end would show as a blank.
  if (fDocument.back() == '>' && element != std::string_view("span")) fDocument += '\n';
  Tag(element, attributes, ">");
  fOpen.push_back(element);
}

void HtmlWriter::Close() {
  fDocument.append("</").append(fOpen.back()).append(">");
  fOpen.pop_back();
}

void HtmlWriter::Void(const char* element, const Attributes& attributes) {
  Tag(element, attributes, "/>\n");
}

void HtmlWriter::Text(const std::string& text) {
  AppendEscaped(text, fDocument);
}

void HtmlWriter::Element(const char* element, const Attributes& attributes, const std::string& text) {
  Open(element, attributes);
  Text(text);
  Close();
}

void HtmlWriter::Asset(const char* element, const char* content) {
  Open(element);
  fDocument += content;
  Close();
}

}  // namespace cli
