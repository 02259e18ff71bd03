// How options take their values: as any text, or as words of a list of choices.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/option/Option.h"
#include "cli/option/UsageError.h"

namespace cli {

using StoreValue = std::function<void(const std::string& value)>;

/// Takes any text but an empty one. That is most often an unset variable, and ignoring the option would not
/// do what the user meant.
StoreValue StoreText(std::string& target);

/// Takes the name of one of `choices`.
StoreValue StoreChoice(std::string& target, const std::vector<Choice>& choices);

/// For an option without a value.
StoreValue StoreTrue(bool& target);

/// Takes a whole number from 1 on.
StoreValue StoreCount(std::optional<std::uint64_t>& target);

/// A whole number with a unit: "500ms", "2s", "5m", "1h", "30d"; seconds where there is none. Throws
/// UsageError for anything else, and for more than `longest`.
std::chrono::milliseconds ParseDuration(const std::string& text, std::chrono::milliseconds longest);

std::vector<std::string> NamesOf(const std::vector<Choice>& choices);

/// The choices of these names.
std::vector<Choice> ChoicesOf(const std::vector<std::string>& names);

/// The parts of `list` between its commas. Throws UsageError, which says that `what` are needed, when one of
/// them is empty.
std::vector<std::string> SplitList(const std::string& list, const std::string& what);

/// The error for a `word` that is not one of `names`; the message lists them.
UsageError NotAmong(const std::string& word, const std::vector<std::string>& names);

/// The one of `names` that equals `word` in upper or lower case. Throws UsageError when none does.
std::string NameOf(const std::string& word, const std::vector<std::string>& names);

}  // namespace cli
