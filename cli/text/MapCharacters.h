// The one loop over the characters of a text; a policy decides what each character becomes.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/text/Utf8.h"

namespace cli {

/// Appends to `out` what `character` becomes. `isUnprintable` says whether people cannot see it or are misled
/// by it where it stands (Unprintable.h).
using CharacterPolicy = std::function<void(const Character& character, bool isUnprintable, std::string& out)>;

/// Appends `text` to `out`, each character as `policy` maps it. ASCII letters, digits, blanks and the signs
/// that no format escapes are copied without calling the policy.
void AppendMapped(std::string_view text, const CharacterPolicy& policy, std::string& out);

/// The same as a text of its own.
std::string MapCharacters(std::string_view text, const CharacterPolicy& policy);

}  // namespace cli
