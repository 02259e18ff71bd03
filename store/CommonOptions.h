// Options that several subcommands share.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/ResultList.h"
#include "store/TimeText.h"

namespace store {

/// Where the lists of a subcommand go, and in which form.
struct ListOptions {
  std::string format = "table";
  std::string output;
};

/// --db DATABASE.
cli::Option DatabaseOption(std::string& database);

/// --at TIME.
cli::Option AtOption(std::optional<Moment>& at);

/// --format and --output of a list.
std::vector<cli::Option> ListOptionTable(ListOptions& options);

/// Takes the name of a host. Throws UsageError for a text that can be none.
std::function<void(const std::string&)> StoreHostName(std::string& target);

/// Takes a value that `parse` makes of its text.
template <typename Target, typename Parse>
std::function<void(const std::string&)> StoreParsed(Target& target, Parse parse) {
  return [&target, parse](const std::string& text) { target = parse(text); };
}

/// Writes the list. Throws UserError.
void Print(const ResultList& list, const ListOptions& options);

}  // namespace store
