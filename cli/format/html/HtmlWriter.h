// Writes HTML that is well-formed XML too: elements are balanced, and every text and attribute value is
// escaped, unprintable characters as EscapeForDocument does it. Markup never comes from data.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

class HtmlWriter {
 public:
  using Attributes = std::vector<std::pair<const char*, std::string>>;

  /// Element and attribute names must be constants of the program; an attribute without a value is written
  /// with an empty one.
  void Open(const char* element, const Attributes& attributes = {});
  /// Ends the element that was opened last; there must be one.
  void Close();
  /// An element that has no content in HTML, such as `meta`.
  void Void(const char* element, const Attributes& attributes);
  void Text(const std::string& text);
  /// An element that contains only text.
  void Element(const char* element, const Attributes& attributes, const std::string& text);
  /// The program's own style or script, unescaped.
  void Asset(const char* element, const char* content);

  /// The document so far.
  const std::string& Document() const { return fDocument; }

 private:
  void Tag(const char* element, const Attributes& attributes, const char* end);

  std::string fDocument = "<!DOCTYPE html>\n";
  std::vector<const char*> fOpen;
};

}  // namespace cli
