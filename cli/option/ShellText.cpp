#include "cli/option/ShellText.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/option/Values.h"

namespace cli {

std::vector<const CommandSpec*> PartsOf(const CommandSpec& command) {
  std::vector<const CommandSpec*> parts;
  for (const CommandSpec& subcommand : command.subcommands) parts.push_back(&subcommand);
  if (parts.empty()) parts.push_back(&command);
  return parts;
}

std::string Joined(const std::vector<Choice>& choices, const std::string& separator) {
  return fmt::format("{}", fmt::join(NamesOf(choices), separator));
}

std::string JoinedSubcommands(const CommandSpec& command, const std::string& separator) {
  std::vector<std::string> names;
  names.reserve(command.subcommands.size());
  for (const CommandSpec& subcommand : command.subcommands) names.push_back(subcommand.name);
  return fmt::format("{}", fmt::join(names, separator));
}

std::string JoinedTakers(const CommandSpec& command, const std::string& separator) {
  std::vector<std::string> names;
  for (const Option* const option : VisibleOptions(command.Default())) {
    if (option->TakesValue()) names.insert(names.end(), option->names.begin(), option->names.end());
  }
  return fmt::format("{}", fmt::join(names, separator));
}

std::string FunctionName(const CommandSpec& command) {
  std::string name = "_" + command.name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

std::string Filled(std::string text, const std::vector<std::pair<std::string, std::string>>& places) {
  for (const auto& [place, content] : places) {
    for (std::size_t at = text.find(place); at != std::string::npos;
         at = text.find(place, at + content.size())) {
      text.replace(at, place.size(), content);
    }
  }
  return text;
}

}  // namespace cli
