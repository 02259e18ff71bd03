#include "cli/option/FishCompletion.h"

#include <fmt/format.h>

#include "cli/option/ShellText.h"

namespace cli {

namespace {

std::string Quoted(const std::string& text) {
  return "'" + Filled(text, {{"\\", R"(\\)"}, {"'", R"(\')"}}) + "'";
}

/// The words that a choice is made among, each with what it means on its line.
std::string Words(const std::vector<Choice>& choices) {
  std::vector<std::string> lines;
  for (const Choice& choice : choices) {
    lines.push_back(choice.description.empty() ? choice.name : choice.name + "\t" + choice.description);
  }
  return Quoted(fmt::format("{}", fmt::join(lines, "\n")));
}

std::string ValueOf(const Option& option) {
  if (!option.TakesValue()) return std::string();
  if (option.isList) return fmt::format(" -x -a '(__fish_append , {})'", Joined(option.choices, " "));
  if (!option.choices.empty()) return " -x -a " + Words(option.choices);
  return option.value == "FILE" ? " -r -F" : " -x";
}

std::string NamesOf(const Option& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return names;
}

/// When the options and operands of `part` are offered.
std::string ConditionOf(const CommandSpec& command, const CommandSpec& part) {
  if (&part == &command) return "true";
  if (!part.isDefault) return "__fish_seen_subcommand_from " + part.name;
  std::vector<std::string> others;
  for (const CommandSpec& subcommand : command.subcommands) {
    if (!subcommand.isDefault) others.push_back(subcommand.name);
  }
  return fmt::format("not __fish_seen_subcommand_from {}", fmt::join(others, " "));
}

std::string LinesOf(const CommandSpec& command, const CommandSpec& part) {
  const std::string beginning =
      fmt::format("complete -c {} -n {}", command.name, Quoted(ConditionOf(command, part)));
  std::string lines;
  for (const Option* const option : VisibleOptions(part)) {
    lines += beginning + NamesOf(*option) + ValueOf(*option) + " -d " + Quoted(option->help) + "\n";
  }
  if (part.operands.empty()) return lines;
  const Operand& operand = part.operands.front();
  return lines + beginning + (operand.choices.empty() ? " -F" : " -a " + Words(operand.choices)) + "\n";
}

}  // namespace

std::string FishCompletion(const CommandSpec& command) {
  std::string script = Filled(
      "# Completion of @COMMAND@'s arguments for fish, made by @COMMAND@ --generate fish.\n"
      "complete -c @COMMAND@ -f\n",
      {{"@COMMAND@", command.name}});
  for (const CommandSpec& subcommand : command.subcommands) {
    script += fmt::format("complete -c {} -n __fish_use_subcommand -a {} -d {}\n", command.name,
                          subcommand.name, Quoted(subcommand.summary));
  }
  for (const CommandSpec* const part : PartsOf(command)) script += LinesOf(command, *part);
  return script;
}

}  // namespace cli
