// Suggestions for mistyped words.
#pragma once

#include <string>
#include <vector>

namespace cli {

/// The number of letters to insert, remove or replace to turn `from` into `to`.
std::size_t EditDistance(const std::string& from, const std::string& to);

/// The one of `words` that is nearest to `word`, the first of several. Empty when none is near: when it does
/// not begin with `word` and more than a third of its letters differ.
std::string Nearest(const std::string& word, const std::vector<std::string>& words);

}  // namespace cli
