// What options do with their values: take them as they are, or as words of a list of choices.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/option/Option.h"
#include "cli/option/UsageError.h"

namespace cli {

using StoreValue = std::function<void(const std::string& value)>;

/// Takes any text but an empty one, which is most often an unset variable: to take that for an option left
/// out would do something else than was meant.
StoreValue StoreText(std::string& target);

/// Takes the name of one of `choices`.
StoreValue StoreChoice(std::string& target, const std::vector<Choice>& choices);

/// For an option without a value.
StoreValue StoreTrue(bool& target);

std::vector<std::string> NamesOf(const std::vector<Choice>& choices);

/// The choices of these names.
std::vector<Choice> ChoicesOf(const std::vector<std::string>& names);

/// The parts of `list` between its commas. Throws UsageError, which says that `what` are needed, when one of
/// them is empty.
std::vector<std::string> SplitList(const std::string& list, const std::string& what);

/// To be thrown for a `word` that is none of `names`; the message lists them.
UsageError NotAmong(const std::string& word, const std::vector<std::string>& names);

/// The one of `names` that `word` is without regard to the case of its letters. Throws UsageError when
/// it is none.
std::string NameOf(const std::string& word, const std::vector<std::string>& names);

/// `text` with small letters of ASCII in the place of capitals.
std::string ToLower(std::string text);

}  // namespace cli
