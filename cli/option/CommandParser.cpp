#include "cli/option/CommandParser.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "cli/option/Suggestion.h"
#include "cli/option/UsageError.h"

namespace cli {

namespace {

bool IsOption(const std::string& argument) {
  return argument.size() > 1 && argument.front() == '-';
}

std::string NameIn(const std::string& argument) {
  return argument.substr(0, argument.find('='));
}

/// Some of the arguments, each described, in the order given.
std::string Listed(const std::vector<std::string>& descriptions) {
  return fmt::format("{}", fmt::join(descriptions, ", "));
}

/// One command or subcommand, declared to CLI11, which splits the arguments into options, values and operands
/// and passes on unknown ones. Everything else is checked here, so that all messages have our form.
class DeclaredCommand {
 public:
  /// Declares the options and operands of `command` on `app`; the caller owns both.
  DeclaredCommand(const CommandSpec& command, CLI::App& app) : fApp(&app) {
    app.set_help_flag();
    app.allow_extras();
    for (const Option& option : command.options) fOptions.emplace_back(&option, Declare(option, app));
    for (const Operand& operand : command.operands) fOperands.emplace_back(&operand, Declare(operand, app));
  }

  bool IsOf(const CLI::App* app) const { return fApp == app; }

  /// The arguments that are neither options nor operands of the command, without the "--" that ends options.
  std::vector<std::string> Unknown() const {
    std::vector<std::string> unknown = fApp->remaining();
    const auto end = std::find(unknown.begin(), unknown.end(), "--");
    if (end != unknown.end()) unknown.erase(end);
    return unknown;
  }

  /// The first option that was given; null when there is none.
  const Option* FirstOptionUsed() const {
    for (const auto& [option, parsed] : fOptions) {
      if (parsed->count() > 0) return option;
    }
    return nullptr;
  }

  /// Stores the first exclusive option that was given; false when there is none.
  bool StoreExclusive() const {
    for (const auto& [option, parsed] : fOptions) {
      if (!option->isExclusive || parsed->count() == 0) continue;
      Store(*option, parsed->results());
      return true;
    }
    return false;
  }

  void StoreOptions() const {
    for (const auto& [option, parsed] : fOptions) {
      if (parsed->count() == 0) continue;
      CheckUse(*option, parsed->count());
      Store(*option, parsed->results());
    }
  }

  void StoreOperands() const {
    for (const auto& [operand, parsed] : fOperands) {
      if (parsed->count() == 0 && !operand->isOptional) throw UsageError(operand->name + " is missing");
      for (const std::string& argument : parsed->results()) StoreIn(*operand, operand->name, argument);
    }
  }

 private:
  static CLI::Option* Declare(const Option& option, CLI::App& app) {
    const std::string names = fmt::format("{}", fmt::join(option.names, ","));
    if (!option.TakesValue()) return app.add_flag(names);
    return app.add_option(names)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
  }

  static CLI::Option* Declare(const Operand& operand, CLI::App& app) {
    return app.add_option(operand.name)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(operand.isRepeatable);
  }

  void CheckUse(const Option& option, std::size_t count) const {
    if (count > 1 && option.TakesValue() && !option.isRepeatable) {
      throw UsageError(option.LastName() + " may be given only once");
    }
    for (const auto& [other, parsed] : fOptions) {
      if (other->LastName() == option.requiredOption && parsed->count() == 0) {
        throw UsageError(fmt::format("{} requires {}", option.LastName(), option.requiredOption));
      }
    }
  }

  static void Store(const Option& option, const std::vector<std::string>& values) {
    for (const std::string& value : values) StoreIn(option, option.LastName(), value);
  }

  template <typename Target>
  static void StoreIn(const Target& target, const std::string& name, const std::string& value) {
    try {
      target.store(value);
    } catch (const UsageError& error) {
      throw UsageError(fmt::format("{}: {}", name, error.what()));
    }
  }

  CLI::App* fApp;
  std::vector<std::pair<const Option*, const CLI::Option*>> fOptions;
  std::vector<std::pair<const Operand*, const CLI::Option*>> fOperands;
};

class CommandParser {
 public:
  /// Declares only what `arguments` may name, since declaring takes time.
  CommandParser(const CommandSpec& command, const std::vector<std::string>& arguments)
      : fCommand(command), fDeclared(command.Default(), fApp), fChosen(&command.Default()) {
    for (const CommandSpec& subcommand : command.subcommands) {
      if (std::find(arguments.begin(), arguments.end(), subcommand.name) == arguments.end()) continue;
      CLI::App* const app = fApp.add_subcommand(subcommand.name);
      if (subcommand.isDefault) {
        app->set_help_flag();
        app->fallthrough();
      } else {
        fSubcommands.emplace_back(&subcommand, DeclaredCommand(subcommand, *app));
      }
    }
    fApp.require_subcommand(0, 1);
  }

  const CommandSpec& Parse(const std::vector<std::string>& arguments) {
    try {
      Split(arguments);
      if (!StoreExclusive()) CheckAndStore(arguments);
    } catch (const UsageError& error) {
      throw UsageError(fmt::format("{}; see {} --help", error.what(), Call()));
    }
    return *fChosen;
  }

 private:
  std::string Call() const { return fCommand.CallOf(*fChosen); }

  /// The subcommand that was named; null for the default one.
  const DeclaredCommand* Named() const {
    for (const auto& [subcommand, declared] : fSubcommands) {
      if (subcommand == fChosen) return &declared;
    }
    return nullptr;
  }

  void Split(const std::vector<std::string>& arguments) {
    try {
      fApp.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ArgumentMismatch&) {
      // The last option has no argument left for its value.
      Choose();
      throw UsageError(DescribeMissingValue(arguments.back()));
    } catch (const CLI::ParseError& error) {
      throw UsageError(error.what());
    }
    Choose();
  }

  void Choose() {
    for (const auto& [subcommand, declared] : fSubcommands) {
      const std::vector<CLI::App*> named = fApp.get_subcommands();
      if (!named.empty() && declared.IsOf(named.front())) fChosen = subcommand;
    }
  }

  /// `argument` is an option, or several short ones in one word.
  std::string DescribeMissingValue(const std::string& argument) const {
    const std::string name =
        argument.compare(0, 2, "--") == 0 ? NameIn(argument) : std::string{'-', argument.back()};
    const Option* const option = FindAnywhere(name);
    return option == nullptr ? name + " requires a value"
                             : fmt::format("{} requires a value: {}", name, option->value);
  }

  bool StoreExclusive() const {
    const DeclaredCommand* const named = Named();
    return (named != nullptr && named->StoreExclusive()) || fDeclared.StoreExclusive();
  }

  void CheckAndStore(const std::vector<std::string>& arguments) const {
    CheckEqualsSigns(arguments);
    RefuseUnknown();
    const DeclaredCommand* const named = Named();
    const Option* const foreign = named == nullptr ? nullptr : fDeclared.FirstOptionUsed();
    if (foreign != nullptr) throw UsageError(DescribeOptionOfOther(foreign->LastName()));
    const DeclaredCommand& chosen = named == nullptr ? fDeclared : *named;
    chosen.StoreOptions();
    chosen.StoreOperands();
    if (fChosen->check) fChosen->check();
  }

  /// CLI11 would read the next argument as the value when that is empty, and accept a value for an option
  /// without one.
  void CheckEqualsSigns(const std::vector<std::string>& arguments) const {
    for (const std::string& argument : arguments) {
      if (argument == "--") return;
      const std::string name = NameIn(argument);
      const Option* const option = name == argument ? nullptr : FindAnywhere(name);
      if (option == nullptr || option->LastName().compare(0, 2, "--") != 0) continue;
      if (!option->TakesValue()) throw UsageError(name + " takes no value");
      if (name.size() + 1 == argument.size()) throw UsageError(name + ": must not be empty");
    }
  }

  void RefuseUnknown() const {
    std::vector<std::string> unknown = fDeclared.Unknown();
    if (const DeclaredCommand* const named = Named()) {
      const std::vector<std::string> others = named->Unknown();
      unknown.insert(unknown.end(), others.begin(), others.end());
    }
    std::vector<std::string> descriptions;
    bool mayBeValue = false;
    for (const std::string& argument : unknown) {
      if (!mayBeValue || IsOption(argument)) descriptions.push_back(Describe(argument));
      mayBeValue = IsOption(argument) && NameIn(argument) == argument;
    }
    if (!descriptions.empty()) throw UsageError(Listed(descriptions));
  }

  std::string Describe(const std::string& argument) const {
    return IsOption(argument) ? DescribeUnknownOption(NameIn(argument)) : DescribeUnexpected(argument);
  }

  std::string DescribeUnknownOption(const std::string& name) const {
    if (FindAnywhere(name) != nullptr) return DescribeOptionOfOther(name);
    std::vector<std::string> known;
    for (const Option* const option : VisibleOptions(*fChosen)) known.push_back(option->LastName());
    return fmt::format("unknown option {}{}", name, Question(Nearest(name, known)));
  }

  std::string DescribeOptionOfOther(const std::string& name) const {
    return fmt::format("{} is not supported by {}", name, Call());
  }

  std::string DescribeUnexpected(const std::string& argument) const {
    std::vector<std::string> words;
    for (const CommandSpec& subcommand : fCommand.subcommands) words.push_back(subcommand.name);
    std::string meant = fApp.get_subcommands().empty() ? Nearest(argument, words) : std::string();
    if (meant.empty() && !fChosen->fileOption.empty()) {
      meant = fmt::format("{} {}", fChosen->fileOption, argument);
    }
    return fmt::format("unexpected argument {}{}", argument, Question(meant));
  }

  static std::string Question(const std::string& meant) {
    return meant.empty() ? std::string() : fmt::format(" (did you mean {}?)", meant);
  }

  /// The option of that name, of the command that was asked for or of another one; null when none has it.
  const Option* FindAnywhere(const std::string& name) const {
    if (const Option* const option = fChosen->FindOption(name)) return option;
    for (const CommandSpec& subcommand : fCommand.subcommands) {
      if (const Option* const option = subcommand.FindOption(name)) return option;
    }
    return nullptr;
  }

  const CommandSpec& fCommand;
  CLI::App fApp;
  /// The default subcommand's options, which may stand on either side of its name.
  DeclaredCommand fDeclared;
  /// The other subcommands.
  std::vector<std::pair<const CommandSpec*, DeclaredCommand>> fSubcommands;
  const CommandSpec* fChosen;
};

}  // namespace

const CommandSpec& ParseCommand(const CommandSpec& command, const std::vector<std::string>& arguments) {
  return CommandParser(command, arguments).Parse(arguments);
}

}  // namespace cli
