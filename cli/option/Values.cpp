#include "cli/option/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "cli/text/Text.h"

namespace cli {

namespace {

using std::chrono::milliseconds;

/// No more digits, so that no product of a number and a unit overflows.
constexpr std::size_t kMostDigits = 9;

/// The number that the digits make; nothing for any other text.
std::optional<std::uint64_t> ParseDigits(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || text.size() > kMostDigits) return std::nullopt;
  return number;
}

std::optional<milliseconds> UnitOf(std::string_view name) {
  constexpr std::chrono::hours kDay{24};
  if (name == "ms") return milliseconds(1);
  if (name.empty() || name == "s") return std::chrono::seconds(1);
  if (name == "m") return std::chrono::minutes(1);
  if (name == "h") return std::chrono::hours(1);
  return name == "d" ? std::optional<milliseconds>(kDay) : std::nullopt;
}

}  // namespace

StoreValue StoreText(std::string& target) {
  return [&target](const std::string& value) {
    if (value.empty()) throw UsageError("must not be empty");
    target = value;
  };
}

StoreValue StoreChoice(std::string& target, const std::vector<Choice>& choices) {
  return [&target, names = NamesOf(choices)](const std::string& value) {
    if (std::find(names.begin(), names.end(), value) == names.end()) throw NotAmong(value, names);
    target = value;
  };
}

StoreValue StoreTrue(bool& target) {
  return [&target](const std::string&) { target = true; };
}

StoreValue StoreCount(std::optional<std::uint64_t>& target) {
  return [&target](const std::string& value) {
    const std::optional<std::uint64_t> number = ParseDigits(value);
    if (number.value_or(0) == 0) {
      throw UsageError(fmt::format("must be a whole number from 1 on, of up to {} digits", kMostDigits));
    }
    target = number;
  };
}

milliseconds ParseDuration(const std::string& text, milliseconds longest) {
  const std::size_t letters = std::min(text.find_first_not_of("0123456789"), text.size());
  const std::optional<std::uint64_t> number = ParseDigits(std::string_view(text).substr(0, letters));
  const std::optional<milliseconds> unit = UnitOf(std::string_view(text).substr(letters));
  if (!number || !unit) {
    throw UsageError(
        "must be a whole number with ms, s, m, h or d after it, such as 500ms; without a unit, seconds");
  }
  const milliseconds duration = static_cast<milliseconds::rep>(*number) * *unit;
  if (duration > longest) {
    throw UsageError(fmt::format("must be {} seconds at most",
                                 std::chrono::duration_cast<std::chrono::seconds>(longest).count()));
  }
  return duration;
}

std::vector<std::string> NamesOf(const std::vector<Choice>& choices) {
  std::vector<std::string> names;
  names.reserve(choices.size());
  for (const Choice& choice : choices) names.push_back(choice.name);
  return names;
}

std::vector<Choice> ChoicesOf(const std::vector<std::string>& names) {
  std::vector<Choice> choices;
  choices.reserve(names.size());
  for (const std::string& name : names) choices.push_back({name});
  return choices;
}

std::vector<std::string> SplitList(const std::string& list, const std::string& what) {
  const bool hasEmptyPart =
      list.empty() || list.front() == ',' || list.back() == ',' || list.find(",,") != std::string::npos;
  if (hasEmptyPart) throw UsageError(fmt::format("needs {} separated by commas", what));
  return SplitAtCommas(list);
}

UsageError NotAmong(const std::string& word, const std::vector<std::string>& names) {
  return UsageError(fmt::format("\"{}\" is not one of {}", word, fmt::join(names, ", ")));
}

std::string NameOf(const std::string& word, const std::vector<std::string>& names) {
  const auto found = std::find_if(names.begin(), names.end(), [&word](const std::string& name) {
    return ToLower(name) == ToLower(word);
  });
  if (found == names.end()) throw NotAmong(word, names);
  return *found;
}

}  // namespace cli
