#include "cli/option/CommandSpec.h"

#include <algorithm>

namespace cli {

const CommandSpec& CommandSpec::Default() const {
  const auto found = std::find_if(subcommands.begin(), subcommands.end(),
                                  [](const CommandSpec& subcommand) { return subcommand.isDefault; });
  return found == subcommands.end() ? *this : *found;
}

const CommandSpec* CommandSpec::FindSubcommand(const std::string& word) const {
  const auto found = std::find_if(subcommands.begin(), subcommands.end(),
                                  [&word](const CommandSpec& subcommand) { return subcommand.name == word; });
  return found == subcommands.end() ? nullptr : &*found;
}

const Option* CommandSpec::FindOption(const std::string& optionName) const {
  const auto found = std::find_if(options.begin(), options.end(), [&optionName](const Option& option) {
    return std::find(option.names.begin(), option.names.end(), optionName) != option.names.end();
  });
  return found == options.end() ? nullptr : &*found;
}

std::string CommandSpec::CallOf(const CommandSpec& chosen) const {
  return &chosen == this || chosen.isDefault ? name : name + " " + chosen.name;
}

std::vector<const Option*> VisibleOptions(const CommandSpec& command) {
  std::vector<const Option*> visible;
  for (const Option& option : command.options) {
    if (!option.isHidden) visible.push_back(&option);
  }
  return visible;
}

}  // namespace cli
