// A strict reader of untrusted JSON: it refuses repeated names and deep nesting, and reports errors with
// their place in the text.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>

namespace cli {

/// What is wrong with a document and where: "line 2, column 5: ..." or "/a/b: ..." with the JSON pointer.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The JSON pointer to the member `name`, or the element of that number, of what `pointer` leads to; for
/// messages, so a zero byte in the name becomes U+FFFD.
std::string PointerTo(const std::string& pointer, const std::string& name);
std::string PointerTo(const std::string& pointer, std::size_t index);

/// Deletes a document without allocating memory. The library's own destructor allocates some for a value that
/// has children, and ends the program when there is none.
struct DeleteJson {
  void operator()(nlohmann::json* document) const;
};
using JsonDocument = std::unique_ptr<nlohmann::json, DeleteJson>;

/// The one value that `text` holds; never null. Throws JsonError when it is not JSON, names a member twice,
/// nests deeper than an inventory ever does, or has a number beyond every range.
JsonDocument ParseStrictJson(const std::string& text);

}  // namespace cli
