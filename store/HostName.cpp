#include "store/HostName.h"

#include <string_view>

#include "cli/text/Utf8.h"

namespace store {

bool IsHostName(const std::string& name) {
  constexpr char32_t kBlank = 0x20;
  constexpr char32_t kDelete = 0x7F;
  if (name.empty() || name.size() > kLongestHostName) return false;
  for (std::string_view rest = name; !rest.empty();) {
    const cli::Character character = cli::FirstCharacter(rest);
    if (!character.isValid || character.code < kBlank || character.code == kDelete) return false;
    rest.remove_prefix(character.bytes.size());
  }
  return true;
}

}  // namespace store
