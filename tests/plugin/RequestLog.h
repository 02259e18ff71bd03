// The lines that the plug-in writes about data requests and its own life: what the tests of the plug-in
// object and of the module have in common.
#pragma once

#include <string>
#include <vector>

#include "tests/support/AllClasses.h"
#include "tests/support/LogLine.h"

namespace usbinfo_test {

inline const LogLine kInit{kDebug, "TUSBInfoCallbacks::Init - Initializing the plugin."};
inline const LogLine kDeInit{kDebug, "TUSBInfoCallbacks::DeInit - De-initializing the plugin."};
inline const LogLine kUnknownException{kStatus, "USBInfo plugin threw unknown exception"};
inline const LogLine kRetrieved{kDebug,
                                "TUSBInfoCallbacks::retrieveDataForClass - Data successfully retrieved."};
inline const LogLine kNoInstances{
    kDebug, "TUSBInfoCallbacks::retrieveDataForClass - No instances of the requested class were created."};
inline const LogLine kNormalExit{kDebug, "TUSBInfoCallbacks::GetData - Normal exit from plugin."};

inline LogLine Received(const std::string& className) {
  return {kDebug, "TUSBInfoCallbacks::GetData - Received request for class " + className + "."};
}

/// The lines of `log` that no provider writes.
inline std::vector<LogLine> WithoutProviders(const std::vector<LogLine>& log) {
  std::vector<LogLine> lines;
  for (const LogLine& line : log) {
    if (line.text.rfind("TUSBInfoCallbacks::", 0) == 0 || line == kUnknownException) lines.push_back(line);
  }
  return lines;
}

}  // namespace usbinfo_test
