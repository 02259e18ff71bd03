// The options of `usbinfo show`.
#pragma once

#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/model/Selection.h"
#include "cli/option/Option.h"

namespace cli {

struct ShowOptions {
  Source source;
  std::string format;
  /// The formats that were requested, by --format or by their short options.
  std::vector<std::string> askedFormats;
  bool isVerbose = false;
  bool isCompact = false;
  /// Metrics have serial numbers, too.
  bool hasSerials = false;
  /// Names of columns or properties to show; empty for what the format chooses.
  std::vector<std::string> columns;
  std::string color = "auto";
  /// Names of classes to request from the plug-in, unchanged; empty for all.
  std::vector<std::string> request;
  /// The part of the inventory to print.
  Selection selection;
  bool isOccupied = false;
  bool isFree = false;
  /// Empty for standard output.
  std::string output;
  /// Empty for standard error.
  std::string log;
  std::string logLevel = "warning";
  std::string logFormat = "text";
};

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> ShowOptionTable(ShowOptions& options);

/// To be called once the command line is read: determines the format. Throws UsageError for options that
/// contradict each other.
void CompleteShowOptions(ShowOptions& options);

}  // namespace cli
