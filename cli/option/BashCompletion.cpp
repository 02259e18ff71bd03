#include "cli/option/BashCompletion.h"

#include <fmt/format.h>

#include "cli/option/ShellText.h"

namespace cli {

namespace {

constexpr const char* kBashScript =
    R"sh(# Completion of @COMMAND@'s arguments for bash, made by @COMMAND@ --generate bash.
# shellcheck shell=bash

# @FUNCTION@_options SUBCOMMAND: its options.
@FUNCTION@_options() {
  case $1 in
@OPTIONS@  esac
}

# @FUNCTION@_value SUBCOMMAND OPTION: what follows the option: FILE, TEXT, ONE of the words behind it or a LIST of
# them; nothing where it takes no value.
@FUNCTION@_value() {
  case $1:$2 in
@VALUES@  esac
}

# @FUNCTION@_operand SUBCOMMAND: what its operands are, in the same words.
@FUNCTION@_operand() {
  case $1 in
@OPERANDS@  esac
}

# @FUNCTION@_offer KIND WORD...: offers what begins like the word at the cursor.
@FUNCTION@_offer() {
  local kind=$1 before=
  shift
  case $kind in
    FILE)
      compopt -o filenames 2> /dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    ONE) mapfile -t COMPREPLY < <(compgen -W "$*" -- "$cur") ;;
    LIST)
      # The words before the last comma stay.
      compopt -o nospace 2> /dev/null
      [[ $cur != *,* ]] || before=${cur%,*},
      mapfile -t COMPREPLY < <(compgen -P "$before" -W "$*" -- "${cur##*,}")
      ;;
  esac
}

# @FUNCTION@_subcommand WORD...: the first that is one and not the value of an option.
@FUNCTION@_subcommand() {
  local word value=
  for word in "$@"; do
    if [[ -z $value && $word =~ ^(@PATTERN@)$ ]]; then
      printf '%s\n' "$word"
      return
    fi
    [[ $word == = ]] || value=$(@FUNCTION@_value @DEFAULT@ "$word")
  done
}

@FUNCTION@() {
  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} subcommand words
  # Bash makes an equals sign a word.
  if [[ $cur == = ]]; then
    cur=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  subcommand=$(@FUNCTION@_subcommand "${COMP_WORDS[@]:1:COMP_CWORD-1}")
  COMPREPLY=()
  read -ra words <<< "$(@FUNCTION@_value "${subcommand:-@DEFAULT@}" "$before")"
  if [[ ${#words[@]} -eq 0 && $cur == -* ]]; then
    read -ra words <<< "ONE $(@FUNCTION@_options "${subcommand:-@DEFAULT@}")"
  elif [[ ${#words[@]} -eq 0 && -z $subcommand ]]; then
    words=(@UNNAMED@)
  elif [[ ${#words[@]} -eq 0 ]]; then
    read -ra words <<< "$(@FUNCTION@_operand "$subcommand")"
  fi
  [[ ${#words[@]} -eq 0 ]] || @FUNCTION@_offer "${words[@]}"
}

complete -F @FUNCTION@ @COMMAND@
)sh";

std::string KindOf(const Option& option) {
  if (!option.choices.empty()) return (option.isList ? "LIST " : "ONE ") + Joined(option.choices, " ");
  return option.value == "FILE" ? "FILE" : "TEXT";
}

std::string KindOf(const Operand& operand) {
  if (operand.isText) return "TEXT";
  return operand.choices.empty() ? "FILE" : "ONE " + Joined(operand.choices, " ");
}

std::string Case(const std::string& pattern, const std::string& words) {
  return fmt::format("    {}) echo '{}' ;;\n", pattern, words);
}

std::string OptionCases(const CommandSpec& command) {
  std::string cases;
  for (const CommandSpec* const part : PartsOf(command)) {
    std::vector<std::string> names;
    for (const Option* const option : VisibleOptions(*part)) {
      names.insert(names.end(), option->names.begin(), option->names.end());
    }
    cases += Case(part->name, fmt::format("{}", fmt::join(names, " ")));
  }
  return cases;
}

std::string ValueCases(const CommandSpec& command) {
  std::string cases;
  for (const CommandSpec* const part : PartsOf(command)) {
    for (const Option* const option : VisibleOptions(*part)) {
      if (!option->TakesValue()) continue;
      const std::string separator = " | " + part->name + ":";
      cases +=
          Case(part->name + ":" + fmt::format("{}", fmt::join(option->names, separator)), KindOf(*option));
    }
  }
  return cases;
}

std::string OperandCases(const CommandSpec& command) {
  std::string cases;
  for (const CommandSpec* const part : PartsOf(command)) {
    if (!part->operands.empty()) cases += Case(part->name, KindOf(part->operands.front()));
  }
  return cases;
}

/// The words offered before a subcommand was typed.
std::string Unnamed(const CommandSpec& command) {
  if (!command.subcommands.empty()) return "ONE " + JoinedSubcommands(command, " ");
  return command.operands.empty() ? "TEXT" : KindOf(command.operands.front());
}

}  // namespace

std::string BashCompletion(const CommandSpec& command) {
  return Filled(kBashScript, {{"@COMMAND@", command.name},
                              {"@FUNCTION@", FunctionName(command)},
                              {"@DEFAULT@", command.Default().name},
                              {"@PATTERN@", JoinedSubcommands(command, "|")},
                              {"@UNNAMED@", Unnamed(command)},
                              {"@OPTIONS@", OptionCases(command)},
                              {"@VALUES@", ValueCases(command)},
                              {"@OPERANDS@", OperandCases(command)}});
}

}  // namespace cli
