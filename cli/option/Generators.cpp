#include "cli/option/Generators.h"

#include "cli/option/BashCompletion.h"
#include "cli/option/FishCompletion.h"
#include "cli/option/ManualPage.h"
#include "cli/option/ZshCompletion.h"

namespace cli {

const std::vector<std::string>& GeneratorNames() {
  static const std::vector<std::string> names = {"man", "bash", "zsh", "fish"};
  return names;
}

std::string Generate(const std::string& name, const CommandSpec& command) {
  if (name == "bash") return BashCompletion(command);
  if (name == "zsh") return ZshCompletion(command);
  if (name == "fish") return FishCompletion(command);
  return ManualOptions(command);
}

}  // namespace cli
