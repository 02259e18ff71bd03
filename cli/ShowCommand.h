// `usbinfo show`, the default: collects an inventory through the plug-in, on the machine or from a given
// device list, and prints it.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cli {

struct ShowOptions {
  /// A device list to use instead of the machine's, "-" for standard input; empty for the machine's.
  std::string devices;
  std::string format;
  /// Class names to ask for, separated by commas; empty for all.
  std::string request;
  std::string systemName;
  /// Empty for standard output.
  std::string output;
  std::string plugin;
  /// Empty for standard error.
  std::string log;
  std::string logLevel = "warning";
  std::string logFormat = "text";
};

/// Declares the options on `app`, to be parsed into `options`.
void AddShowOptions(CLI::App& app, ShowOptions& options);

/// Runs the command; gives its exit status, throws UserError for what ends it with another line.
int RunShow(const ShowOptions& options);

}  // namespace cli
