// The one loop that steps through a text: what each character becomes is a policy.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/text/Utf8.h"

namespace cli {

/// Appends to `out` what `character` becomes. `isUnprintable` says whether people cannot see it or are misled
/// by it where it stands (Unprintable.h).
using CharacterPolicy = std::function<void(const Character& character, bool isUnprintable, std::string& out)>;

/// Appends `text` to `out`, each character as `policy` makes it. Letters, digits, blanks and those signs of
/// ASCII that no format escapes are copied and never reach the policy.
void AppendMapped(std::string_view text, const CharacterPolicy& policy, std::string& out);

/// The same as a text of its own.
std::string MapCharacters(std::string_view text, const CharacterPolicy& policy);

}  // namespace cli
