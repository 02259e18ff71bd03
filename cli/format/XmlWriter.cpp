#include "cli/format/XmlWriter.h"

#include <fmt/format.h>

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

XmlWriter::XmlWriter() : fText(R"(<?xml version="1.0" encoding="UTF-8"?>)") {}

void XmlWriter::Start(const char* element) {
  EndTag();
  if (fContent != Content::kText) BeginLine();
  fText.append(1, '<').append(element);
  fContent = Content::kAttributes;
  ++fDepth;
}

void XmlWriter::Attribute(const char* name, std::string_view value) {
  fText.append(1, ' ').append(name).append("=\"");
  AppendMapped(value, AppendAttribute, fText);
  fText += '"';
}

void XmlWriter::Text(std::string_view text) {
  EndTag();
  AppendMapped(text, AppendText, fText);
  fContent = Content::kText;
}

void XmlWriter::End(const char* element) {
  --fDepth;
  if (fContent == Content::kElements) BeginLine();
  EndTag();
  fText.append("</").append(element).append(1, '>');
  fContent = Content::kElements;
}

void XmlWriter::EndTag() {
  if (fContent == Content::kAttributes) fText += '>';
}

void XmlWriter::BeginLine() {
  fText.append(1, '\n').append(fDepth, ' ');
}

std::string XmlWriter::Finish() {
  fText += '\n';
  return std::exchange(fText, std::string());
}

}  // namespace cli
