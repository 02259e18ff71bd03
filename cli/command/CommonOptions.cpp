#include "cli/command/CommonOptions.h"

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

Option FormatOption(std::string& format, const std::vector<std::string>& formats) {
  const std::vector<Choice> choices = ChoicesOf(formats);
  return {.names = {"--format"},
          .value = "FORMAT",
          .help = "How to print",
          .defaultValue = format,
          .choices = choices,
          .manual = "How to print:",
          .store = StoreChoice(format, choices)};
}

Option AsIsOption(bool& isAsIs) {
  return {.names = {"--as-is"},
          .help = "Read device lists unchanged",
          .manual = R"(Give the plug-in each device list unchanged.
Without this option, parents that
.Xr usb-devices 1
prints wrong are corrected, and two kinds of lines are left out: interfaces of a device
without a configuration, and lines that the plug-in would take for those of the next
device.)",
          .store = StoreTrue(isAsIs)};
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
