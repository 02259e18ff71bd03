// Whether the inventory lost something on its way out of the plug-in. The plug-in goes on where a class, an
// instance or a link fails, as it should in a host; only a line of its log says so. What is left looks whole
// and is not.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/ILogger.h"

namespace cli {

class LossWatch {
 public:
  /// Takes the next line of the plug-in's log, whatever is shown of it. Only lines of the severity "status"
  /// count, and only by their fixed texts: what devices say of themselves stands in debug lines alone.
  void Take(NKESTA20::ILogger::EQSVLogSeverity severity, std::string_view text);

  /// Throws UserError when a line said that something was lost.
  void CheckNothingLost() const;

 private:
  std::size_t fLosses = 0;
  /// What the first of them says, a constant.
  std::string_view fFirst;
};

}  // namespace cli
