// Options that several subcommands share.
#pragma once

#include <cstdint>
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

/// The options, and --format and --output of a list after them.
std::vector<cli::Option> WithListOptions(std::vector<cli::Option> table, ListOptions& options);

/// Takes the name of a host. Throws UsageError for a text that can be none.
std::function<void(const std::string&)> StoreHostName(std::string& target);

/// Takes a value that `parse` makes of its text.
template <typename Target, typename Parse>
std::function<void(const std::string&)> StoreParsed(Target& target, Parse parse) {
  return [&target, parse](const std::string& text) { target = parse(text); };
}

/// Writes the list. Throws UserError.
void Print(const ResultList& list, const ListOptions& options);

struct NamedCount {
  std::string name;
  std::uint64_t number;
};

/// Writes the list of that name, which has one row: a column for each count. Throws UserError.
void PrintCounts(const std::string& name, const std::vector<NamedCount>& counts, const ListOptions& options);

}  // namespace store
