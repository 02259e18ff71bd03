// What an output format may know about the command's options and about where its text goes. The command fills
// it; a format reads what concerns it and ignores the rest.
#pragma once

#include <string>
#include <vector>

#include "cli/text/Color.h"

namespace cli {

class UsbIds;

struct RenderOptions {
  /// The text goes to standard output rather than a file: fit the width if that is a terminal.
  bool isStandardOutput = true;
  Color color = Color::kAuto;
  /// Show more about each item than fits on a line.
  bool isVerbose = false;
  /// A document of JSON stands on one line.
  bool isCompact = false;
  /// The columns to show: properties with `showsClasses`, else some of DeviceColumnNames; empty for what the
  /// format chooses.
  std::vector<std::string> columns = {};
  /// A table shows the instances of classes, not devices.
  bool showsClasses = false;
  /// Rows are for the free sockets, not for devices.
  bool listsFreeSockets = false;
  /// What is not plugged in was left out.
  bool isOccupiedOnly = false;
  /// Metrics have serial numbers, too.
  bool showsSerials = false;
  /// The names of vendors and products; null for none. Owned by the caller.
  const UsbIds* names = nullptr;
};

}  // namespace cli
