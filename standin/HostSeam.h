// The one hook that every host operation of the stand-in calls before it does anything else. A test sets an
// observer to count the calls, to record them, or to make the n-th one throw. Copies of values share their
// data and cannot fail, so they do not call it.
#pragma once

#include <functional>
#include <string>

#include "standin/Export.h"

namespace standin {

enum class HostOperation {
  kGetCoreLogger,
  kGetPluginManager,
  kRegisterPlugin,
  kGetSystemName,
  kGetSystemCreationClassName,
  kFileExists,
  kCaptureFile,
  kSpawnProcess,
  kWriteLog,
  kGetClass,
  kGetClassName,
  kGetClassNamespace,
  kCreateInstance,
  kEnumerateInstances,
  kCommit,
  kGetObjectPath,
  kGetInstanceClass,
  kGetProperty,
  kSetProperty,
  kGetPropertyValue,
  kGetPropertyText,
  kMakeStringValue,
  kMakeNumberValue,
  kMakeReferenceValue,
  kMakeArrayValue,
  kIsNull,
  kConvertToString,
  kConvertToNumber,
  kCompareReferences,
  kTranslateStatusCode,
};

/// One call: the operation and what it is about (a class, property, path, command or log text; may be empty).
struct HostCall {
  HostOperation operation;
  const std::string& subject;
};

class HostSeam {
 public:
  using Observer = std::function<void(const HostCall&)>;

  /// Is called for every operation from now on; an exception that it throws leaves the operation. An empty
  /// one is not called.
  USBINFO_STANDIN_EXPORT static void SetObserver(Observer observer);
};

}  // namespace standin
