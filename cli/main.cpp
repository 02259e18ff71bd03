// The usbinfo command: parses the arguments, runs a subcommand, and turns what goes wrong into one line on
// standard error and an exit status.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "cli/command/DiffCommand.h"
#include "cli/command/ExitStatus.h"
#include "cli/command/SchemaCommand.h"
#include "cli/command/ShowCommand.h"
#include "cli/command/ShowOptions.h"
#include "cli/text/Output.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"

namespace {

int Fail(const std::string& message) {
  std::cerr << "usbinfo: " << cli::EscapeForTerminal(message) << "\n";
  return cli::kFailure;
}

constexpr std::size_t kHelpColumn = 24;

/// Where the command is started without one of the standard streams, its number must not go to a file of
/// ours. Something that cannot be read or written takes it, so that the stream still fails when it is used.
void OccupyStandardStreams() {
  int fd = -1;
  do {
    fd = ::open("/", O_PATH | O_CLOEXEC);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd >= 0) ::close(fd);
}

void PrintHelp(const CLI::App& app, const std::string& name) {
  cli::WriteStandardOutput(app.get_formatter()->make_help(&app, name, CLI::AppFormatMode::Normal));
}

/// The first of the command's own options that was given; null when there is none.
const CLI::Option* GivenOption(const CLI::App& app) {
  for (const CLI::Option* const option : app.get_options()) {
    if (option->count() > 0) return option;
  }
  return nullptr;
}

/// A subcommand with options of its own.
struct Subcommand {
  CLI::App* app;
  std::function<int()> run;
};

/// The command line: the inventory's options, which are also those of its subcommand, and the other
/// subcommands.
struct CommandLine {
  CLI::App app{"Shows a machine's USB inventory: controllers, hubs, ports and devices.", "usbinfo"};
  cli::ShowOptions showOptions;
  cli::DiffOptions diffOptions;
  cli::SchemaOptions schemaOptions;
  std::vector<Subcommand> others;

  CommandLine() {
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("-V,--version", "usbinfo " USBINFO_VERSION, "Print the version");
    app.get_formatter()->column_width(kHelpColumn);
    cli::AddShowOptions(app, showOptions);
    // The default subcommand: its options are the command's own, on either side of its name.
    CLI::App* const show = app.add_subcommand("show", "Print the inventory; what usbinfo does on its own");
    show->set_help_flag();
    show->fallthrough();
    CLI::App* const diff = app.add_subcommand("diff", "Compare two saved inventories");
    cli::AddDiffOptions(*diff, diffOptions);
    others.push_back({diff, [this] { return cli::RunDiff(diffOptions); }});
    CLI::App* const schema = app.add_subcommand("schema", "Print the definitions of the inventory's classes");
    cli::AddSchemaOptions(*schema, schemaOptions);
    others.push_back({schema, [this] { return cli::RunSchema(schemaOptions); }});
    app.require_subcommand(0, 1);
  }
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// The one of the other subcommands that was given; null when it is the inventory.
  const Subcommand* Given() const {
    for (const Subcommand& other : others) {
      if (other.app->parsed()) return &other;
    }
    return nullptr;
  }
};

int Run(int argc, char** argv) {
  CommandLine line;
  const auto name = [&line] { return line.Given() ? "usbinfo " + line.Given()->app->get_name() : "usbinfo"; };
  try {
    line.app.parse(argc, argv);
    cli::CompleteShowOptions(line.showOptions);
  } catch (const CLI::CallForHelp&) {
    PrintHelp(line.Given() ? *line.Given()->app : line.app, name());
    return cli::kPrinted;
  } catch (const CLI::Success&) {
    cli::WriteStandardOutput(line.app.version() + "\n");
    return cli::kPrinted;
  } catch (const CLI::ParseError& error) {
    return Fail(std::string(error.what()) + "; see " + name() + " --help");
  }
  if (!line.Given()) return cli::RunShow(line.showOptions);
  if (const CLI::Option* const option = GivenOption(line.app)) {
    return Fail(option->get_name() + " is no option of " + name() + "; see " + name() + " --help");
  }
  return line.Given()->run();
}

}  // namespace

int main(int argc, char** argv) {
  OccupyStandardStreams();
  // The character set of the terminal; numbers keep the form that programs expect.
  static_cast<void>(std::setlocale(LC_CTYPE, ""));
  // A closed pipe or a limit on the size of files shows in the write that fails, which is told like any
  // failed output, and leaves no half of a file behind.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  try {
    return Run(argc, argv);
  } catch (const cli::UserError& error) {
    return Fail(error.what());
  } catch (const std::bad_alloc&) {
    return Fail("out of memory");
  } catch (const std::exception& error) {
    return Fail(error.what());
  } catch (...) {
    return Fail("unexpected failure");
  }
}
