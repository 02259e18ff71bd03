#include "cli/option/FishCompletion.h"

#include <fmt/format.h>

#include "cli/option/ShellText.h"

namespace cli {

namespace {

constexpr const char* kFishScript =
    R"sh(# Completion of @COMMAND@'s arguments for fish, made by @COMMAND@ --generate fish.

# @FUNCTION@_is SUBCOMMAND...: whether the first subcommand that stands before the cursor, and is not the value of an
# option, is one of these; "none" where there is none.
function @FUNCTION@_is
  set -l found none
  set -l before ''
  for word in (commandline -opc)[2..]
    if contains -- $word @SUBCOMMANDS@; and not contains -- $before @TAKERS@
      set found $word
      break
    end
    set before $word
  end
  contains -- $found $argv
end

complete -c @COMMAND@ -f
@LINES@)sh";

std::string Quoted(const std::string& text) {
  return "'" + Filled(text, {{"\\", R"(\\)"}, {"'", R"(\')"}}) + "'";
}

/// The choices of a value, each with its meaning. Fish expands them once more.
std::string Words(const std::vector<Choice>& choices) {
  std::vector<std::string> words;
  words.reserve(choices.size());
  for (const Choice& choice : choices) {
    words.push_back(choice.description.empty() ? choice.name
                                               : choice.name + R"(\t)" + Quoted(choice.description));
  }
  return Quoted(fmt::format("{}", fmt::join(words, " ")));
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

/// The condition under which the options and operands of `part` are offered.
std::string ConditionOf(const CommandSpec& command, const CommandSpec& part) {
  const bool isMeantByNone = part.isDefault || &part == &command;
  return Quoted(FunctionName(command) + "_is " + part.name + (isMeantByNone ? " none" : ""));
}

std::string LinesOf(const CommandSpec& command, const CommandSpec& part) {
  const std::string beginning = fmt::format("complete -c {} -n {}", command.name, ConditionOf(command, part));
  std::string lines;
  for (const Option* const option : VisibleOptions(part)) {
    lines += beginning + NamesOf(*option) + ValueOf(*option) + " -d " + Quoted(option->help) + "\n";
  }
  if (part.operands.empty()) return lines;
  const Operand& operand = part.operands.front();
  if (operand.isText) return lines;
  return lines + beginning + (operand.choices.empty() ? " -F" : " -a " + Words(operand.choices)) + "\n";
}

}  // namespace

std::string FishCompletion(const CommandSpec& command) {
  std::string lines;
  for (const CommandSpec& subcommand : command.subcommands) {
    lines += fmt::format("complete -c {} -n '{}_is none' -a {} -d {}\n", command.name, FunctionName(command),
                         subcommand.name, Quoted(subcommand.summary));
  }
  for (const CommandSpec* const part : PartsOf(command)) lines += LinesOf(command, *part);
  return Filled(kFishScript, {{"@COMMAND@", command.name},
                              {"@FUNCTION@", FunctionName(command)},
                              {"@SUBCOMMANDS@", JoinedSubcommands(command, " ")},
                              {"@TAKERS@", JoinedTakers(command, " ")},
                              {"@LINES@", lines}});
}

}  // namespace cli
