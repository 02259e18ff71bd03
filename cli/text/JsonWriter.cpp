#include "cli/text/JsonWriter.h"

#include <fmt/format.h>

#include <utility>

#include "cli/text/MapCharacters.h"

namespace cli {

namespace {

void EscapeForJson(const Character& character, bool /*isUnprintable*/, std::string& out) {
  switch (character.code) {
    case U'"':
      out += "\\\"";
      return;
    case U'\\':
      out += "\\\\";
      return;
    case U'\b':
      out += "\\b";
      return;
    case U'\f':
      out += "\\f";
      return;
    case U'\n':
      out += "\\n";
      return;
    case U'\r':
      out += "\\r";
      return;
    case U'\t':
      out += "\\t";
      return;
    default:
      break;
  }
  const bool isPlain = character.code >= 0x20 && character.code < 0x7F;
  if (isPlain) {
    out += character.bytes;
  } else {
    AppendUtf16Escape("\\u", character.code, out);
  }
}

}  // namespace

void JsonWriter::Key(std::string_view name) {
  BeginMember();
  AppendQuoted(name);
  fText += fLayout == Layout::kIndented ? ": " : ":";
  fHasKey = true;
}

void JsonWriter::String(std::string_view text) {
  BeginValue();
  AppendQuoted(text);
}

void JsonWriter::Number(std::uint64_t number) {
  BeginValue();
  fText += std::to_string(number);
}

void JsonWriter::Decimal(double number) {
  BeginValue();
  fText += fmt::format("{}", number);
}

void JsonWriter::Bool(bool value) {
  BeginValue();
  fText += value ? "true" : "false";
}

void JsonWriter::Null() {
  BeginValue();
  fText += "null";
}

std::string JsonWriter::Take() {
  return std::exchange(fText, std::string());
}

void JsonWriter::Begin(char bracket) {
  BeginValue();
  fText += bracket;
  ++fDepth;
}

void JsonWriter::End(char bracket) {
  --fDepth;
  if (!IsAfterOpeningBracket()) EndLine();
  fText += bracket;
}

void JsonWriter::BeginValue() {
  if (!std::exchange(fHasKey, false)) BeginMember();
}

void JsonWriter::BeginMember() {
  if (fDepth == 0) return;
  if (!IsAfterOpeningBracket()) fText += ',';
  EndLine();
}

void JsonWriter::EndLine() {
  constexpr std::size_t kBlanksPerLevel = 2;
  if (fLayout == Layout::kIndented) fText.append(1, '\n').append(fDepth * kBlanksPerLevel, ' ');
}

void JsonWriter::AppendQuoted(std::string_view text) {
  fText += '"';
  AppendMapped(text, EscapeForJson, fText);
  fText += '"';
}

// No other value ends in an opening bracket.
bool JsonWriter::IsAfterOpeningBracket() const {
  return fText.back() == '{' || fText.back() == '[';
}

}  // namespace cli
