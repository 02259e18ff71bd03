// Runs the built usbinfo as a user's shell does, with standard output, standard error and the exit status
// kept apart. Unlike `system`, which no test program has, this starts nothing but the command itself.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace usbinfo_test {

struct CommandResult {
  /// The exit status; a signal that ended the command as its negative number.
  int status = 0;
  std::string output;
  std::string errors;
};

class Command {
 public:
  explicit Command(std::vector<std::string> arguments) : fArguments(std::move(arguments)) {}

  /// Another program than the built one, or the same one elsewhere.
  Command& Program(const std::string& path);
  /// As a user without privileges where the tests run as root, from a copy that every user can reach.
  Command& AsOrdinaryUser();
  /// Run by another program: its words, which come before the command's own.
  Command& Through(std::vector<std::string> runner);
  /// A variable of the environment. The others are fixed: the locale C.UTF-8, a search path without commands,
  /// no names of vendors and products and a terminal without colours.
  Command& Set(const std::string& name, const std::string& value);
  /// Standard input is a pipe that holds `text`; else it is at its end.
  Command& Input(const std::string& text);
  /// Standard input is the file or folder at `path`.
  Command& InputFrom(const std::string& path);
  /// Standard output is the file at `path`; else it is captured.
  Command& OutputTo(const std::string& path);
  /// Standard output is a pipe that nobody reads any more.
  Command& OutputToClosedPipe();
  Command& CloseOutput();
  /// Standard error is closed; else it is captured.
  Command& CloseErrors();
  /// Standard output is a terminal of that many columns, captured as it is written.
  Command& OutputToTerminal(unsigned short columns);
  /// Standard error is a terminal; `onText` is called with the text so far each time that more is written.
  Command& ErrorsToTerminal(std::function<void(const std::string& text)> onText);

  CommandResult Run() const;

 private:
  enum class Target { kCapture, kFile, kClosedPipe, kClosed, kTerminal };

  std::vector<std::string> Words() const;
  std::vector<std::string> EnvironmentList() const;

  std::string fProgram = COMMAND_PATH;
  bool fIsOrdinaryUser = false;
  std::vector<std::string> fRunner;
  std::vector<std::string> fArguments;
  std::map<std::string, std::string> fEnvironment = {{"LC_ALL", "C.UTF-8"},
                                                     {"NO_COLOR", ""},
                                                     {"PATH", "/nonexistent"},
                                                     {"TERM", "dumb"},
                                                     {"USBINFO_IDS", ""}};
  bool fHasInput = false;
  std::string fInput;
  std::string fInputPath = "/dev/null";
  Target fTarget = Target::kCapture;
  std::string fOutputPath;
  unsigned short fColumns = 0;
  bool fHasErrors = true;
  /// Empty unless standard error is a terminal.
  std::function<void(const std::string& text)> fOnErrors;
};

/// Runs the command with these arguments in the default environment.
CommandResult RunUsbinfo(std::vector<std::string> arguments);

}  // namespace usbinfo_test
