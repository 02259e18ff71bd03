// The host's core logger: one process-wide object, used without a null check.
#pragma once

#include <string>

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API ILogger {
 public:
  enum EQSVLogSeverity { kError = 0, kWarning = 1, kStatus = 2, kDebug = 3, kVerbose = 4 };

  virtual ~ILogger() = default;
  /// Keeps the write operation at the third slot; the plug-in never calls it.
  virtual void Reserved() = 0;
  /// Writes one line.
  virtual void Write(EQSVLogSeverity severity, const std::string& text) = 0;
};

}  // namespace NKESTA20
