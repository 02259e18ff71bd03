// Options alike in all subcommands; see the header.
#include "cli/option/OptionForms.h"

#include <fmt/format.h>

namespace cli {

std::string CheckNotEmpty(const std::string& text) {
  return text.empty() ? "must not be empty" : "";
}

CLI::Option* AddText(CLI::App& app, const char* name, std::string& value, const char* type,
                     const char* help) {
  return app.add_option(name, value, help)->type_name(type)->check(CheckNotEmpty);
}

CLI::Option* AddChoice(CLI::App& app, const char* name, std::string& value, const char* type,
                       const std::vector<std::string>& choices, const char* help) {
  return app.add_option(name, value, fmt::format("{} [{}]:\n{}", help, value, fmt::join(choices, ", ")))
      ->type_name(type)
      ->check(CLI::IsMember(choices).description(""));
}

}  // namespace cli
