// Writes HTML that is well-formed XML too: elements are balanced, every text and attribute value is escaped
// and made fit to be shown. What is its own markup never comes from elsewhere.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

class HtmlWriter {
 public:
  using Attributes = std::vector<std::pair<const char*, std::string>>;

  /// Element and attribute names are the program's own; an attribute without a value is written with an empty
  /// one.
  void Open(const char* element, const Attributes& attributes = {});
  /// Ends the element that was opened last; there must be one.
  void Close();
  /// An element that has no content in HTML, such as `meta`.
  void Void(const char* element, const Attributes& attributes);
  void Text(const std::string& text);
  /// An element with nothing but text in it.
  void Element(const char* element, const Attributes& attributes, const std::string& text);
  /// The program's own style or script, as it is.
  void Asset(const char* element, const char* content);

  /// The document so far.
  const std::string& Document() const { return fDocument; }

 private:
  void Tag(const char* element, const Attributes& attributes, const char* end);

  std::string fDocument = "<!DOCTYPE html>\n";
  std::vector<const char*> fOpen;
};

}  // namespace cli
