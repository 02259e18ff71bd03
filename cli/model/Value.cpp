#include "cli/model/Value.h"

#include <fmt/format.h>

namespace cli {

namespace {

struct ValueText {
  std::string operator()(std::monostate) const { return {}; }
  std::string operator()(std::uint64_t number) const { return std::to_string(number); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const std::vector<std::string>& texts) const {
    return fmt::format("{{{}}}", fmt::join(texts, ", "));
  }
  std::string operator()(const Reference& reference) const { return reference.path; }
};

}  // namespace

std::string TextOf(const Value& value) {
  return std::visit(ValueText(), value);
}

}  // namespace cli
