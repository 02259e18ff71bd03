// Writes a JSON document sequentially, in ASCII whatever the strings hold. It stores only the text, so that
// running out of memory is an ordinary exception.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

/// The caller keeps objects and arrays balanced and writes a key before each member's value.
class JsonWriter {
 public:
  enum class Layout {
    /// Each member on a line of its own, indented by two blanks a level; empty objects and arrays as `{}` and
    /// `[]`.
    kIndented,
    /// Without blanks and line ends.
    kOneLine
  };

  explicit JsonWriter(Layout layout) : fLayout(layout) {}

  void BeginObject() { Begin('{'); }
  void EndObject() { End('}'); }
  void BeginArray() { Begin('['); }
  void EndArray() { End(']'); }

  /// The name of the next value, in an object.
  void Key(std::string_view name);

  /// Any bytes may stand in `text`; those that are not UTF-8 become U+FFFD.
  void String(std::string_view text);
  void Number(std::uint64_t number);
  /// A whole number without a fraction; `number` is finite.
  void Decimal(double number);
  void Bool(bool value);
  void Null();

  /// The document, without a newline at its end. The writer is ready for another one.
  std::string Take();

 private:
  void Begin(char bracket);
  void End(char bracket);
  void BeginValue();
  void BeginMember();
  void EndLine();
  void AppendQuoted(std::string_view text);
  bool IsAfterOpeningBracket() const;

  Layout fLayout;
  std::string fText;
  std::size_t fDepth = 0;
  bool fHasKey = false;
};

}  // namespace cli
