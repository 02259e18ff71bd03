#include "cli/format/html/HtmlWriter.h"

#include <string_view>

#include "cli/text/Text.h"

namespace cli {

namespace {

/// For text and attribute values alike; only characters of ASCII need markup.
void AppendMarkup(char byte, std::string& out) {
  switch (byte) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '"':
      out += "&quot;";
      return;
    case '\'':
      out += "&#39;";
      return;
    default:
      out += byte;
  }
}

void AppendEscaped(std::string_view text, std::string& out) {
  for (const char byte : EscapeForDocument(text)) AppendMarkup(byte, out);
}

bool IsPartOfLine(std::string_view element) {
  return element == "span" || element == "a" || element == "svg";
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
  if (fDocument.back() == '>' && !IsPartOfLine(element)) fDocument += '\n';
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
