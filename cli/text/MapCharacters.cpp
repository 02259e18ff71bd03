#include "cli/text/MapCharacters.h"

#include <array>
#include <cstddef>

#include "cli/text/Unprintable.h"

namespace cli {

namespace {

constexpr std::size_t kBytes = 256;

/// The bytes that are copied: printable ASCII, except characters that some format escapes.
constexpr std::array<bool, kBytes> MakeCopied() {
  std::array<bool, kBytes> copied{};
  for (unsigned char byte = ' '; byte < 0x7F; ++byte) {
    copied[byte] = std::string_view("\"\\<>&'").find(static_cast<char>(byte)) == std::string_view::npos;
  }
  return copied;
}

constexpr std::array<bool, kBytes> kCopied = MakeCopied();

/// How many bytes at the beginning of `text` are copied.
std::size_t CopiedLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && kCopied[static_cast<unsigned char>(text[length])]) ++length;
  return length;
}

}  // namespace

void AppendMapped(std::string_view text, const CharacterPolicy& policy, std::string& out) {
  UnprintableFinder finder;
  while (!text.empty()) {
    const std::size_t copied = CopiedLength(text);
    if (copied > 0) {
      out += text.substr(0, copied);
      text.remove_prefix(copied);
      // After plain ASCII, a character is treated as at the beginning of a text.
      finder = UnprintableFinder();
      continue;
    }
    const Character character = FirstCharacter(text);
    policy(character, finder.IsUnprintable(character), out);
    text.remove_prefix(character.bytes.size());
  }
}

std::string MapCharacters(std::string_view text, const CharacterPolicy& policy) {
  std::string mapped;
  mapped.reserve(text.size());
  AppendMapped(text, policy, mapped);
  return mapped;
}

}  // namespace cli
