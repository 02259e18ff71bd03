// Detects whether the plug-in lost a part of the inventory. The plug-in goes on when a class, an instance or
// a link fails, as it should in a host; only a line of its log says so. The rest looks complete but is not.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/ILogger.h"

namespace cli {

class LossWatch {
 public:
  /// Takes the next line of the plug-in's log, whether it is shown or not. Only lines of the severity
  /// "status" count, by their fixed texts; strings of devices occur in debug lines only.
  void Take(NKESTA20::ILogger::EQSVLogSeverity severity, std::string_view text);

  /// Throws UserError when a line said that something was lost.
  void CheckNothingLost() const;

 private:
  std::size_t fLosses = 0;
  /// What the first such line reports, a constant.
  std::string_view fFirst;
};

}  // namespace cli
