// The forms that options of all subcommands have: a text that must not be empty, and a choice among names.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace cli {

/// For CLI11: what is wrong with `text`, or empty. An empty name is most often an unset variable; taking it
/// for "not given" would do something else.
std::string CheckNotEmpty(const std::string& text);

/// An option whose text is kept in `value` and must not be empty. `type` stands for it in the help.
CLI::Option* AddText(CLI::App& app, const char* name, std::string& value, const char* type, const char* help);

/// An option that is one of `choices`, `value` unless it is given; the help tells all of them.
CLI::Option* AddChoice(CLI::App& app, const char* name, std::string& value, const char* type,
                       const std::vector<std::string>& choices, const char* help);

}  // namespace cli
