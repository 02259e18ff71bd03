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

Option AllowSuspectOption(const std::string& verb, bool& allowsSuspect) {
  return {.names = {"--allow-suspect"},
          .help = verb + " in spite of lines that a device may have forged",
          .manual = verb + R"( in spite of lines in a device list that the kernel does not write, and that a
device may have forged.
Without this option, such a list is an error.)",
          .store = StoreTrue(allowsSuspect)};
}

Option DefaultTargetOption(std::string& target) {
  const std::vector<Choice> choices = {{"block"}, {"allow"}};
  return {.names = {"--default"},
          .value = "TARGET",
          .help = "What becomes of devices that no rule matches",
          .defaultValue = target,
          .choices = choices,
          .manual = "What becomes of devices that no rule matches:",
          .store = StoreChoice(target, choices)};
}

}  // namespace cli
