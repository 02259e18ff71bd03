#include "cli/option/HelpText.h"

#include <fmt/format.h>

#include <sstream>

#include "cli/option/Values.h"

namespace cli {

namespace {

constexpr std::size_t kDescriptionColumn = 24;
constexpr std::size_t kLineWidth = 80;

/// The words of `text`, in lines that fit beside the names.
std::vector<std::string> Wrapped(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const bool fits =
        !lines.empty() && kDescriptionColumn + lines.back().size() + 1 + word.size() <= kLineWidth;
    if (fits) {
      lines.back() += " " + word;
    } else {
      lines.push_back(word);
    }
  }
  return lines;
}

/// A name on the left and its description on the right, or below when the name is too long.
std::string Entry(const std::string& name, std::vector<std::string> lines) {
  const std::string left = "  " + name;
  std::string text = fmt::format("{:{}}", left, kDescriptionColumn);
  if (left.size() + 2 > kDescriptionColumn) lines.insert(lines.begin(), "");
  for (std::size_t line = 0; line < lines.size(); ++line) {
    if (line > 0) text += std::string(kDescriptionColumn, ' ');
    text += lines[line];
    text.erase(text.find_last_not_of(' ') + 1);
    text += "\n";
  }
  return text;
}

std::string Names(const Option& option) {
  const std::string names = fmt::format("{}", fmt::join(option.names, ", "));
  return option.TakesValue() ? names + " " + option.value : names;
}

std::vector<std::string> Description(const Option& option) {
  std::string text = option.help;
  if (!option.requiredOption.empty()) text += "; only with " + option.requiredOption;
  if (option.isRepeatable) text += "; may be repeated";
  if (!option.defaultValue.empty()) text += " [" + option.defaultValue + "]";
  if (option.choices.empty()) return Wrapped(text);
  std::vector<std::string> lines = Wrapped(text + ":");
  const std::vector<std::string> choices =
      Wrapped(fmt::format("{}", fmt::join(NamesOf(option.choices), ", ")));
  lines.insert(lines.end(), choices.begin(), choices.end());
  return lines;
}

std::string Usage(const std::string& call, const CommandSpec& command, bool hasSubcommands) {
  std::string usage = "Usage: " + call + " [OPTIONS]";
  for (const Operand& operand : command.operands) {
    const std::string name = operand.name + (operand.isRepeatable ? "..." : "");
    usage += operand.isOptional ? " [" + name + "]" : " " + name;
  }
  return usage + (hasSubcommands ? " [SUBCOMMAND]\n" : "\n");
}

std::string Operands(const CommandSpec& command) {
  std::string text;
  for (const Operand& operand : command.operands) text += Entry(operand.name, Wrapped(operand.help));
  return text.empty() ? text : "\nArguments:\n" + text;
}

std::string Options(const CommandSpec& command) {
  std::string text = "\nOptions:\n";
  for (const Option* const option : VisibleOptions(command))
    text += Entry(Names(*option), Description(*option));
  return text;
}

std::string Subcommands(const CommandSpec& command) {
  std::string text = "\nSubcommands:\n";
  for (const CommandSpec& subcommand : command.subcommands) {
    text +=
        Entry(subcommand.name, Wrapped(subcommand.summary + (subcommand.isDefault ? "; the default" : "")));
  }
  return text;
}

}  // namespace

std::string HelpText(const CommandSpec& command, const CommandSpec& chosen) {
  const bool isWhole = &chosen == &command || chosen.isDefault;
  const bool hasSubcommands = isWhole && !command.subcommands.empty();
  return (isWhole ? command : chosen).summary + ".\n" +
         Usage(command.CallOf(chosen), chosen, hasSubcommands) + Operands(chosen) + Options(chosen) +
         (hasSubcommands ? Subcommands(command) : std::string());
}

}  // namespace cli
