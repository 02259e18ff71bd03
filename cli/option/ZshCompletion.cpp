#include "cli/option/ZshCompletion.h"

#include <fmt/format.h>

#include "cli/option/ShellText.h"

namespace cli {

namespace {

constexpr const char* kZshScript = R"sh(#compdef @COMMAND@
# Completion of @COMMAND@'s arguments for zsh, made by @COMMAND@ --generate zsh.

@FUNCTION@_subcommands() {
  local -a subcommands=(
@SUBCOMMANDS@  )
  _describe -t commands subcommand subcommands
}

@FUNCTION@() {
@OPTIONS@
  # The first word that is a subcommand and not the value of an option.
  local word before subcommand
  for word in ${words[2,CURRENT - 1]}; do
    if [[ $word == (@PATTERN@) && $before != (@TAKERS@) ]]; then
      subcommand=$word
      break
    fi
    before=$word
  done
  case $subcommand in
@CASES@  esac
}

@FUNCTION@ "$@"
)sh";

std::string Quoted(const std::string& text) {
  return "'" + Filled(text, {{"'", R"('\'')"}}) + "'";
}

/// Text inside the brackets of an option.
std::string Explanation(const std::string& text) {
  return Filled(text, {{"[", R"(\[)"}, {"]", R"(\])"}});
}

/// Text between colons.
std::string Message(const std::string& text) {
  return Filled(text, {{":", R"(\:)"}});
}

std::string ActionOf(const Option& option) {
  if (!option.choices.empty() && option.isList) return "_sequence compadd - " + Joined(option.choices, " ");
  if (!option.choices.empty()) return "(" + Joined(option.choices, " ") + ")";
  return option.value == "FILE" ? "_files" : " ";
}

std::string ActionOf(const Operand& operand) {
  if (operand.isText) return " ";
  return operand.choices.empty() ? "_files" : "(" + Joined(operand.choices, " ") + ")";
}

/// The word that lists the options that are no longer offered once this one is given.
std::string ExclusionOf(const Option& option) {
  if (option.isRepeatable) return "*";
  if (option.isExclusive) return "(- *)";
  return option.names.size() > 1 ? fmt::format("({})", fmt::join(option.names, " ")) : std::string();
}

std::string Spec(const Option& option, const std::string& name) {
  const bool isLong = name.compare(0, 2, "--") == 0;
  std::string spec = ExclusionOf(option) + name + (option.TakesValue() && isLong ? "=" : "");
  spec += "[" + Explanation(option.help) + "]";
  if (option.TakesValue()) spec += ":" + Message(option.value) + ":" + ActionOf(option);
  return Quoted(spec);
}

std::string Array(const CommandSpec& part) {
  std::string array = fmt::format("  local -a {}=(\n", part.name);
  for (const Option* const option : VisibleOptions(part)) {
    for (const std::string& name : option->names) array += "    " + Spec(*option, name) + "\n";
  }
  return array + "  )\n";
}

std::string OperandSpecs(const CommandSpec& part) {
  std::string specs;
  for (const Operand& operand : part.operands) {
    const char* const times = operand.isRepeatable ? "*:" : operand.isOptional ? "::" : ":";
    specs += " " + Quoted(times + Message(operand.name) + ":" + ActionOf(operand));
  }
  return specs;
}

std::string Cases(const CommandSpec& command) {
  std::string cases;
  for (const CommandSpec& subcommand : command.subcommands) {
    cases += fmt::format("    {0}) _arguments -S ${0} ':subcommand:({0})'{1} ;;\n", subcommand.name,
                         OperandSpecs(subcommand));
  }
  const CommandSpec& standard = command.Default();
  const std::string operands = command.subcommands.empty()
                                   ? OperandSpecs(command)
                                   : fmt::format(" ':subcommand:{}_subcommands'", FunctionName(command));
  return cases + fmt::format("    *) _arguments -S ${}{} ;;\n", standard.name, operands);
}

std::string DescribedSubcommands(const CommandSpec& command) {
  std::string lines;
  for (const CommandSpec& subcommand : command.subcommands) {
    lines += "    " + Quoted(subcommand.name + ":" + Message(subcommand.summary)) + "\n";
  }
  return lines;
}

}  // namespace

std::string ZshCompletion(const CommandSpec& command) {
  std::string arrays;
  for (const CommandSpec* const part : PartsOf(command)) arrays += Array(*part);
  return Filled(kZshScript, {{"@COMMAND@", command.name},
                             {"@FUNCTION@", FunctionName(command)},
                             {"@SUBCOMMANDS@", DescribedSubcommands(command)},
                             {"@OPTIONS@", arrays},
                             {"@PATTERN@", JoinedSubcommands(command, "|")},
                             {"@TAKERS@", JoinedTakers(command, "|")},
                             {"@CASES@", Cases(command)}});
}

}  // namespace cli
