#include "cli/option/StandardOptions.h"

#include <algorithm>
#include <utility>

#include "cli/option/CommandParser.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/Generators.h"
#include "cli/option/HelpText.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"

namespace cli {

std::vector<Option> StandardOptions::WithHelp(std::vector<Option> options) {
  options.insert(options.begin(), HelpOption(fAsksForHelp));
  return options;
}

std::vector<Option> StandardOptions::WithVersion(std::vector<Option> options,
                                                 const std::vector<std::string>& more) {
  options = WithHelp(std::move(options));
  options.insert(options.begin() + 1, {.names = {"-V", "--version"},
                                       .help = "Print the version",
                                       .isExclusive = true,
                                       .manual = "Print the version and exit.",
                                       .store = StoreTrue(fAsksForVersion)});
  std::vector<Choice> generators = ChoicesOf(GeneratorNames());
  for (const std::string& name : more) generators.push_back({name});
  options.push_back({.names = {"--generate"},
                     .value = "WHAT",
                     .choices = generators,
                     .isExclusive = true,
                     .isHidden = true,
                     .store = StoreChoice(fGenerated, generators)});
  return options;
}

CommandSpec StandardOptions::Help() {
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

int StandardOptions::Run(const std::vector<std::string>& arguments,
                         const std::function<std::string(const std::string& what)>& generate) {
  const CommandSpec& chosen = ParseCommand(fCommand, arguments);
  if (fAsksForHelp) {
    WriteStandardOutput(HelpText(fCommand, chosen));
  } else if (fAsksForVersion) {
    WriteStandardOutput(fCommand.name + " " + fVersion + "\n");
  } else if (!fGenerated.empty()) {
    WriteStandardOutput(Generated(generate));
  } else {
    return chosen.run();
  }
  return kPrinted;
}

std::string StandardOptions::Generated(
    const std::function<std::string(const std::string& what)>& generate) const {
  const std::vector<std::string>& own = GeneratorNames();
  const bool isOwn = std::find(own.begin(), own.end(), fGenerated) != own.end();
  return isOwn ? Generate(fGenerated, fCommand) : generate(fGenerated);
}

}  // namespace cli
