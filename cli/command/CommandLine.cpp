#include "cli/command/CommandLine.h"

#include <utility>

#include "cli/command/CommonOptions.h"
#include "cli/command/DiffCommand.h"
#include "cli/command/ExitStatus.h"
#include "cli/command/SchemaCommand.h"
#include "cli/command/ShowCommand.h"
#include "cli/option/CommandParser.h"
#include "cli/option/Generators.h"
#include "cli/option/HelpText.h"
#include "cli/option/Values.h"
#include "cli/text/Output.h"

namespace cli {

namespace {

/// What --generate takes beside the names of the texts that are made from the options.
constexpr const char* kClassTable = "classes";

}  // namespace

CommandLine::CommandLine() {
  fCommand.name = "usbinfo";
  fCommand.summary = "Show a machine's USB inventory: controllers, hubs, ports and devices";
  fCommand.subcommands.push_back(Show());
  fCommand.subcommands.push_back(Diff());
  fCommand.subcommands.push_back(Schema());
  fCommand.subcommands.push_back(Help());
}

int CommandLine::Run(const std::vector<std::string>& arguments) {
  const CommandSpec& chosen = ParseCommand(fCommand, arguments);
  if (fAsksForHelp) {
    WriteStandardOutput(HelpText(fCommand, chosen));
  } else if (fAsksForVersion) {
    WriteStandardOutput("usbinfo " USBINFO_VERSION "\n");
  } else if (!fGenerated.empty()) {
    WriteStandardOutput(fGenerated == kClassTable ? RenderClassTable() : Generate(fGenerated, fCommand));
  } else {
    return chosen.run();
  }
  return kPrinted;
}

CommandSpec CommandLine::Show() {
  std::vector<Option> options = WithHelp(ShowOptionTable(fShow));
  options.insert(options.begin() + 1, {.names = {"-V", "--version"},
                                       .help = "Print the version",
                                       .isExclusive = true,
                                       .manual = "Print the version and exit.",
                                       .store = StoreTrue(fAsksForVersion)});
  std::vector<Choice> generators = ChoicesOf(GeneratorNames());
  generators.push_back({kClassTable});
  options.push_back({.names = {"--generate"},
                     .value = "WHAT",
                     .choices = generators,
                     .isExclusive = true,
                     .isHidden = true,
                     .store = StoreChoice(fGenerated, generators)});
  return {.name = "show",
          .summary = "Print the inventory",
          .options = std::move(options),
          .isDefault = true,
          .fileOption = "--devices",
          .check = [this] { CompleteShowOptions(fShow); },
          .run = [this] { return RunShow(fShow); }};
}

CommandSpec CommandLine::Diff() {
  return {.name = "diff",
          .summary = "Compare two inventories",
          .manual = R"(.Ar OLD
and
.Ar NEW
are JSON inventories or device lists, the same files that
.Fl -devices
takes.
One of them may be a single dash, which is standard input.
Without
.Ar NEW ,
the new inventory is that of this machine.)",
          .operands = DiffOperands(fDiff),
          .options = WithHelp(DiffOptionTable(fDiff)),
          .check = [this] { CheckDiffOptions(fDiff); },
          .run = [this] { return RunDiff(fDiff); }};
}

CommandSpec CommandLine::Schema() {
  return {.name = "schema",
          .summary = "Print the definitions of the inventory's classes",
          .options = WithHelp(SchemaOptionTable(fSchema)),
          .run = [this] { return RunSchema(fSchema); }};
}

CommandSpec CommandLine::Help() {
  std::vector<Choice> topics;
  for (const CommandSpec& subcommand : fCommand.subcommands) topics.push_back({subcommand.name});
  topics.push_back({"help"});
  return {.name = "help",
          .summary = "Print the help of a subcommand",
          .operands = {{.name = "SUBCOMMAND",
                        .help = "The subcommand; without it, the help of the whole command is printed",
                        .choices = topics,
                        .isOptional = true,
                        .store = StoreChoice(fTopic, topics)}},
          .options = WithHelp({}),
          .run = [this] {
            const CommandSpec* const topic = fCommand.FindSubcommand(fTopic);
            WriteStandardOutput(HelpText(fCommand, topic == nullptr ? fCommand.Default() : *topic));
            return kPrinted;
          }};
}

std::vector<Option> CommandLine::WithHelp(std::vector<Option> options) {
  options.insert(options.begin(), HelpOption(fAsksForHelp));
  return options;
}

}  // namespace cli
