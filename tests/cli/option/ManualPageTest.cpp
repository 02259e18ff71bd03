// The manual page's options as mdoc source.
#include <gmock/gmock.h>

#include "cli/option/CommandSpec.h"
#include "cli/option/ManualPage.h"

namespace usbinfo_test {
namespace {

using cli::CommandSpec;
using cli::ManualOptions;
using cli::Option;
using testing::HasSubstr;

std::string ManualOf(const Option& option) {
  CommandSpec command;
  command.name = "tool";
  command.options = {option};
  return ManualOptions(command);
}

TEST(ManualPage, HasASectionForEachSubcommandWithOptions) {
  CommandSpec command;
  command.name = "tool";
  command.subcommands.resize(2);
  command.subcommands[0].name = "run";
  command.subcommands[0].manual = "Runs.";
  command.subcommands[0].options.resize(1);
  command.subcommands[0].options[0].names = {"-x", "--extra"};
  command.subcommands[0].options[0].manual = "More.";
  command.subcommands[1].name = "help";
  EXPECT_EQ(ManualOptions(command),
            ".Ss Options of run\nRuns.\n.Bl -tag -width Ds\n.It Fl x , Fl -extra\nMore.\n.El\n");
}

TEST(ManualPage, MarksThePartsOfAValue) {
  Option option;
  option.names = {"-s"};
  for (const auto& [value, macros] :
       {std::pair("FILE", ".It Fl s Ar FILE\n"), std::pair("A,B,...", ".It Fl s Ar A,B,...\n"),
        std::pair("[BUS]:[DEV]", ".It Fl s Oo Ar BUS Oc : Ns Oo Ar DEV Oc\n"),
        std::pair("VID:[PID]", ".It Fl s Ar VID : Ns Oo Ar PID Oc\n")}) {
    option.value = value;
    EXPECT_THAT(ManualOf(option), HasSubstr(macros));
  }
}

TEST(ManualPage, ListsChoicesInASentenceUnlessAllAreDescribed) {
  Option option;
  option.names = {"--when"};
  option.value = "WHEN";
  option.defaultValue = "auto";
  option.choices = {{"auto", "on a terminal"}, {"always"}, {"never"}};
  EXPECT_THAT(ManualOf(option),
              HasSubstr(".Cm auto\n.Pq on a terminal, the default ,\n.Cm always\nor\n.Cm never .\n.El\n"));
  option.choices = {{"auto", ".as \\ it is"}, {"always", "everywhere"}};
  EXPECT_THAT(ManualOf(option),
              HasSubstr(".Bl -tag -width always -compact\n.It Cm auto\n\\&.as \\e it is; the "
                        "default\n.It Cm always\neverywhere\n.El\n"));
}

TEST(ManualPage, LeavesHiddenOptionsOut) {
  Option option;
  option.names = {"--secret"};
  option.isHidden = true;
  EXPECT_THAT(ManualOf(option), testing::Not(HasSubstr("secret")));
}

}  // namespace
}  // namespace usbinfo_test
