// What somebody probably meant who mistyped a word.
#pragma once

#include <string>
#include <vector>

namespace cli {

/// The number of letters to insert, remove or replace to make `to` of `from`.
std::size_t EditDistance(const std::string& from, const std::string& to);

/// The one of `words` that is nearest to `word`, the first of several; empty when none is near: when `word`
/// does not begin it and more than a third of the letters differ.
std::string Nearest(const std::string& word, const std::vector<std::string>& words);

}  // namespace cli
