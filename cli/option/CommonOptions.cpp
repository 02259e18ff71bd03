#include "cli/option/CommonOptions.h"

#include "cli/option/Values.h"

namespace cli {

Option HelpOption(bool& isAsked) {
  return {.names = {"-h", "--help"},
          .help = "Print this help",
          .isExclusive = true,
          .manual = "Print the options and exit.",
          .store = StoreTrue(isAsked)};
}

Option OutputOption(std::string& path) {
  return {.names = {"--output"},
          .value = "FILE",
          .help = "Write to FILE, whole or not at all",
          .defaultValue = "standard output",
          .manual = R"(Write to this file instead of standard output.
The file is written whole or not at all, and must not be one that the command reads.
A single dash is standard output.)",
          .store = StoreText(path)};
}

Option FormatOption(std::string& format, const std::vector<Choice>& choices) {
  return {.names = {"--format"},
          .value = "FORMAT",
          .help = "How to print",
          .defaultValue = format,
          .choices = choices,
          .manual = "How to print:",
          .store = StoreChoice(format, choices)};
}

Option ColorOption(std::string& when) {
  const std::vector<Choice> choices = {{"auto", "on a terminal"}, {"always"}, {"never"}};
  return {.names = {"--color"},
          .value = "WHEN",
          .help = "Whether to use colours",
          .defaultValue = when,
          .choices = choices,
          .manual = "Whether to use colours:",
          .store = StoreChoice(when, choices)};
}

}  // namespace cli
