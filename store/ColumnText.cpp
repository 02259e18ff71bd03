#include "store/ColumnText.h"

#include "cli/text/Utf8.h"

namespace store {

std::string ColumnText(std::string_view text) {
  std::string column;
  while (!text.empty()) {
    const cli::Character character = cli::FirstCharacter(text);
    const bool isStorable = character.isValid && character.code != 0;
    const std::string_view bytes = isStorable ? character.bytes : cli::kReplacement;
    if (column.size() + bytes.size() > kLongestColumnText) break;
    column += bytes;
    text.remove_prefix(character.bytes.size());
  }
  return column;
}

std::optional<std::string> OptionalColumnText(std::string_view text) {
  return text.empty() ? std::nullopt : std::optional(ColumnText(text));
}

}  // namespace store
