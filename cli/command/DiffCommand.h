// `usbinfo diff OLD NEW`: what was added, removed, moved and changed between two inventories.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cli {

struct DiffOptions {
  /// Files that hold a JSON inventory or a device list, "-" for standard input.
  std::string before;
  std::string after;
  std::string format = "text";
  std::string color = "auto";
  /// Empty for standard output.
  std::string output;
  /// Empty for the one that came along.
  std::string plugin;
};

/// Adds the operands and options to the subcommand.
void AddDiffOptions(CLI::App& command, DiffOptions& options);

/// Compares and prints; gives the exit status. Throws UserError when an inventory cannot be read or the
/// difference cannot be written.
int RunDiff(const DiffOptions& options);

}  // namespace cli
