// The options of `usbinfo show`: what the command line may say, checked as it is parsed.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/model/Selection.h"

namespace cli {

struct ShowOptions {
  Source source;
  std::string format;
  /// The formats that were asked for, one way or the other.
  std::vector<std::string> askedFormats;
  bool isVerbose = false;
  /// Property names to show, separated by commas; empty for what the format chooses.
  std::string columns;
  std::string color = "auto";
  /// Class names to ask for, separated by commas; empty for all.
  std::string request;
  /// The part of the inventory to print.
  Selection selection;
  /// Empty for standard output.
  std::string output;
  /// Empty for standard error.
  std::string log;
  std::string logLevel = "warning";
  std::string logFormat = "text";
};

/// Declares the options on `app`, to be parsed into `options`.
void AddShowOptions(CLI::App& app, ShowOptions& options);

/// To be called once the command line is parsed: settles the format. Throws CLI::ValidationError for options
/// that contradict each other.
void CompleteShowOptions(ShowOptions& options);

}  // namespace cli
