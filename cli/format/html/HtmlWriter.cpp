#include "cli/format/html/HtmlWriter.h"

#include <string_view>

#include "cli/text/Text.h"

namespace cli {

namespace {

std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char c : ReplaceUnprintable(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

void HtmlWriter::Tag(const char* element, const Attributes& attributes, const char* end) {
  fDocument.append("<").append(element);
  for (const auto& [name, value] : attributes) {
    fDocument.append(" ").append(name).append("=\"").append(Escape(value)).append("\"");
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
  fDocument += Escape(text);
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
