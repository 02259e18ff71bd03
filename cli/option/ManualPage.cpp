#include "cli/option/ManualPage.h"

#include <fmt/format.h>

#include <algorithm>

namespace cli {

namespace {

/// Plain text as an argument of a macro or a line of its own.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char letter : text) escaped += letter == '\\' ? std::string("\\e") : std::string{letter};
  const bool looksLikeMacro = !text.empty() && (text.front() == '.' || text.front() == '\'');
  return looksLikeMacro ? "\\&" + escaped : escaped;
}

/// The macros of a value like "[BUS]:[DEV]".
std::string ValueMacros(const std::string& value) {
  std::string macros = value.front() == '[' ? "" : " Ar ";
  for (const char letter : value) {
    if (letter == '[') {
      macros += " Oo Ar ";
    } else if (letter == ']') {
      macros += " Oc";
    } else if (letter == ':') {
      macros += " : Ns";
    } else {
      macros += letter;
    }
  }
  return macros;
}

std::string Heading(const Option& option) {
  std::vector<std::string> flags;
  for (const std::string& name : option.names) flags.push_back("Fl " + name.substr(1));
  const std::string value = option.TakesValue() ? ValueMacros(option.value) : std::string();
  return fmt::format(".It {}{}\n", fmt::join(flags, " , "), value);
}

std::string ChoiceList(const Option& option) {
  const auto longest = std::max_element(
      option.choices.begin(), option.choices.end(),
      [](const Choice& left, const Choice& right) { return left.name.size() < right.name.size(); });
  std::string text = fmt::format(".Bl -tag -width {} -compact\n", longest->name);
  for (const Choice& choice : option.choices) {
    const char* const suffix = choice.name == option.defaultValue ? "; the default" : "";
    text += fmt::format(".It Cm {}\n{}{}\n", choice.name, Escaped(choice.description), suffix);
  }
  return text + ".El\n";
}

/// The text in parentheses after a choice; empty for none.
std::string DescriptionOf(const Choice& choice, const Option& option) {
  if (choice.name != option.defaultValue) return choice.description;
  return choice.description.empty() ? "the default" : choice.description + ", the default";
}

std::string ChoiceSentence(const Option& option) {
  std::string text;
  const std::size_t last = option.choices.size() - 1;
  for (std::size_t index = 0; index <= last; ++index) {
    const Choice& choice = option.choices[index];
    const std::string description = DescriptionOf(choice, option);
    const char* const mark = index == last ? " ." : index + 1 == last ? "" : " ,";
    if (index > 0 && index == last) text += "or\n";
    text += description.empty() ? fmt::format(".Cm {}{}\n", choice.name, mark)
                                : fmt::format(".Cm {}\n.Pq {}{}\n", choice.name, Escaped(description), mark);
  }
  return text;
}

std::string ChoicesOf(const Option& option) {
  if (option.choices.empty()) return std::string();
  const bool areAllDescribed = std::all_of(option.choices.begin(), option.choices.end(),
                                           [](const Choice& choice) { return !choice.description.empty(); });
  return areAllDescribed ? ChoiceList(option) : ChoiceSentence(option);
}

std::string Section(const CommandSpec& command) {
  std::string text = fmt::format(".Ss Options of {}\n", command.name);
  if (!command.manual.empty()) text += command.manual + "\n";
  text += ".Bl -tag -width Ds\n";
  for (const Option* const option : VisibleOptions(command)) {
    text += Heading(*option) + option->manual + "\n" + ChoicesOf(*option);
  }
  return text + ".El\n";
}

bool HasMoreThanHelp(const CommandSpec& command) {
  return std::any_of(command.options.begin(), command.options.end(),
                     [](const Option& option) { return !option.isExclusive; });
}

}  // namespace

std::string ManualOptions(const CommandSpec& command) {
  std::string text = command.subcommands.empty() ? Section(command) : std::string();
  for (const CommandSpec& subcommand : command.subcommands) {
    if (HasMoreThanHelp(subcommand)) text += Section(subcommand);
  }
  return text;
}

}  // namespace cli
