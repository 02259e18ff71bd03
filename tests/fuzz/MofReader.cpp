#include "tests/fuzz/MofReader.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

std::string EncodeUtf8(std::uint32_t character) {
  std::string bytes;
  if (character < 0x80) return {static_cast<char>(character)};
  if (character < 0x800) {
    bytes += static_cast<char>(0xC0U | (character >> 6U));
  } else {
    if (character < 0x10000) {
      bytes += static_cast<char>(0xE0U | (character >> 12U));
    } else {
      bytes += static_cast<char>(0xF0U | (character >> 18U));
      bytes += static_cast<char>(0x80U | ((character >> 12U) & 0x3FU));
    }
    bytes += static_cast<char>(0x80U | ((character >> 6U) & 0x3FU));
  }
  return bytes + static_cast<char>(0x80U | (character & 0x3FU));
}

/// Takes MOF apart, token by token.
class MofScanner {
 public:
  explicit MofScanner(std::string_view text) : fText(text) {}

  bool IsAtEnd() {
    SkipBlanks();
    return fText.empty();
  }

  /// True, and past it, when `token` comes next.
  bool Takes(std::string_view token) {
    SkipBlanks();
    if (fText.substr(0, token.size()) != token) return false;
    fText.remove_prefix(token.size());
    return true;
  }
  void Expect(std::string_view token) { Require(Takes(token), "the next token of the MOF document"); }

  /// A name or a number.
  std::string Word() {
    SkipBlanks();
    const std::size_t end =
        fText.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_");
    return Advance(end);
  }

  /// All up to the next `end`.
  std::string Upto(std::string_view end) { return Advance(fText.find(end)); }

  /// A string, with its escapes undone.
  std::string String() {
    Expect("\"");
    std::string text;
    while (fText.front() != '"') {
      text += fText.front() == '\\' ? Escaped() : Advance(1);
      Require(!fText.empty(), "a string of the MOF document ends");
    }
    fText.remove_prefix(1);
    return text;
  }

 private:
  void SkipBlanks() { fText.remove_prefix(std::min(fText.find_first_not_of(" \n"), fText.size())); }

  std::string Advance(std::size_t length) {
    Require(length != 0 && length <= fText.size(), "the MOF document goes on");
    const std::string piece(fText.substr(0, length));
    fText.remove_prefix(length);
    return piece;
  }

  std::string Escaped() {
    const char kind = Advance(2).back();
    if (kind == 'n') return "\n";
    if (kind == 't') return "\t";
    if (kind == 'x') return EncodeUtf8(EscapedCharacter());
    Require(kind == '"' || kind == '\\', "an escape of the MOF document");
    return {kind};
  }

  /// One unit of UTF-16 or a pair of surrogates.
  std::uint32_t EscapedCharacter() {
    const std::uint32_t unit = Unit();
    if (unit < 0xD800 || unit > 0xDBFF) return unit;
    Require(Takes("\\x"), "the second of a pair of surrogates");
    return 0x10000 + ((unit - 0xD800) << 10U) + (Unit() - 0xDC00);
  }

  std::uint32_t Unit() {
    constexpr std::size_t kDigits = 4;
    constexpr int kHexadecimal = 16;
    return static_cast<std::uint32_t>(std::stoul(Advance(kDigits), nullptr, kHexadecimal));
  }

  std::string_view fText;
};

struct MofValueCheck {
  MofScanner& scanner;

  void operator()(std::monostate) const { throw BrokenInvariant("the MOF document has a property too many"); }
  void operator()(std::uint64_t number) const {
    RequireEqual(scanner.Word(), std::to_string(number), "a number of the MOF document");
  }
  void operator()(const std::string& text) const {
    RequireEqual(scanner.String(), ReplaceBrokenUtf8(text), "a string of the MOF document");
  }
  void operator()(const cli::Reference& reference) const {
    RequireEqual(scanner.String(), ReplaceBrokenUtf8("/root/cimv2:" + reference.path),
                 "a reference of the MOF document");
  }
  void operator()(const std::vector<std::string>& texts) const {
    scanner.Expect("{");
    for (const std::string& text : texts) {
      if (&text != &texts.front()) scanner.Expect(",");
      RequireEqual(scanner.String(), ReplaceBrokenUtf8(text), "an element of the MOF document");
    }
    scanner.Expect("}");
  }
};

void CheckMofItem(MofScanner& scanner, const cli::Item& item) {
  scanner.Expect("instance of ");
  RequireEqual(scanner.Word(), item.Schema().name, "the class of an instance of the MOF document");
  scanner.Expect("{");
  for (std::size_t index = 0; index < item.Schema().properties.size(); ++index) {
    if (item.At(index).index() == 0) continue;
    RequireEqual(scanner.Word(), item.Schema().properties[index].name, "a property of the MOF document");
    scanner.Expect("=");
    std::visit(MofValueCheck{scanner}, item.At(index));
    scanner.Expect(";");
  }
  scanner.Expect("};");
}

/// Goes past the declarations of qualifiers and classes.
void SkipDeclarations(MofScanner& scanner) {
  while (scanner.Takes("Qualifier ")) {
    scanner.Upto(";");
    scanner.Expect(";");
  }
  while (scanner.Takes("[") || scanner.Takes("class ")) {
    scanner.Upto("};");
    scanner.Expect("};");
  }
}

}  // namespace

void CheckMof(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  MofScanner scanner(document);
  SkipDeclarations(scanner);
  for (const cli::ItemsOfClass& ofClass : inventory.Classes()) {
    for (const cli::Item& item : ofClass.items) CheckMofItem(scanner, item);
  }
  Require(scanner.IsAtEnd(), "nothing follows the instances of the MOF document");
}

}  // namespace usbinfo_test
