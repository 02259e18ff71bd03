#include "cli/format/XmlWriter.h"

#include <fmt/format.h>
#include <tinyxml2.h>

#include <cstddef>
#include <iterator>
#include <utility>

#include "cli/text/MapCharacters.h"

namespace cli {

namespace {

/// Whether XML 1.0 has no such character (production 2).
bool IsForbidden(char32_t code) {
  const bool isBlank = code == U'\t' || code == U'\n' || code == U'\r';
  return (code < 0x20 && !isBlank) || code == 0xFFFE || code == 0xFFFF;
}

/// Null for a character that needs no entity.
const char* EntityOf(char32_t code) {
  switch (code) {
    case U'&':
      return "&amp;";
    case U'<':
      return "&lt;";
    case U'>':
      return "&gt;";
    case U'"':
      return "&quot;";
    default:
      return nullptr;
  }
}

void AppendText(const Character& character, bool isUnprintable, std::string& out) {
  const bool isKeptBlank = character.code == U'\t' || character.code == U'\n';
  if (const char* const entity = EntityOf(character.code)) {
    out += entity;
  } else if (!character.isValid || IsForbidden(character.code)) {
    out += kReplacement;
  } else if (character.code == U'\r') {
    // A reader would turn the character itself into a newline.
    out += "&#13;";
  } else if (isUnprintable && !isKeptBlank) {
    fmt::format_to(std::back_inserter(out), "&#x{:X};", static_cast<unsigned int>(character.code));
  } else {
    out += character.bytes;
  }
}

/// A reader turns tabs and newlines in an attribute into blanks.
void AppendAttribute(const Character& character, bool isUnprintable, std::string& out) {
  const bool isLostBlank = character.code == U'\t' || character.code == U'\n';
  if (isLostBlank) {
    fmt::format_to(std::back_inserter(out), "&#{};", static_cast<unsigned int>(character.code));
  } else {
    AppendText(character, isUnprintable, out);
  }
}

}  // namespace

/// In some versions the printer's own buffer has sizes of type int, so its output is kept here.
class XmlWriter::Printer : public tinyxml2::XMLPrinter {
 public:
  Printer() {
    // Texts already contain their entities.
    constexpr bool kProcessEntities = false;
    tinyxml2::XMLPrinter::VisitEnter(tinyxml2::XMLDocument(kProcessEntities));
  }

  std::string Take() { return std::exchange(fText, std::string()); }

 protected:
  void PrintSpace(int depth) override { fText.append(static_cast<std::size_t>(depth), ' '); }
  void Write(const char* data, std::size_t size) override { fText.append(data, size); }
  void Putc(char character) override { fText += character; }

 private:
  std::string fText;
};

XmlWriter::XmlWriter() : fPrinter(std::make_unique<Printer>()) {
  fPrinter->PushDeclaration(R"(xml version="1.0" encoding="UTF-8")");
}

XmlWriter::~XmlWriter() = default;

void XmlWriter::Start(const char* element) {
  fPrinter->OpenElement(element);
  fIsElementEmpty = true;
}

void XmlWriter::Attribute(const char* name, std::string_view value) {
  fPrinter->PushAttribute(name, MapCharacters(value, AppendAttribute).c_str());
}

void XmlWriter::Text(std::string_view text) {
  fPrinter->PushText(MapCharacters(text, AppendText).c_str());
  fIsElementEmpty = false;
}

void XmlWriter::End() {
  // The printer self-closes an element that never got a text.
  if (fIsElementEmpty) fPrinter->PushText("");
  fPrinter->CloseElement();
  fIsElementEmpty = false;
}

std::string XmlWriter::Finish() {
  return fPrinter->Take();
}

}  // namespace cli
