#include "cli/option/Values.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/text/Text.h"

namespace cli {

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
