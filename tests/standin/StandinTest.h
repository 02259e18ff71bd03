// What the tests of the stand-in share: making and committing instances, asking for the status that an
// operation throws, a plug-in that does nothing, and a directory that goes away with its test.
#pragma once

#include <boost/shared_ptr.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/ICIMInstance.h"
#include "host/IPluginCallbacks.h"
#include "host/TCIMValue.h"
#include "standin/CimClass.h"

namespace usbinfo_test {

/// The text of the TQSVException that `operation` throws; "nothing thrown" when it returns.
std::string StatusOf(const std::function<void()>& operation);

/// A new, uncommitted instance of an entity class with all its keys: the class, `deviceId` and fixed names.
boost::shared_ptr<NKESTA20::ICIMInstance> MakeEntity(const std::string& className,
                                                     const std::string& deviceId);
/// The same, committed.
boost::shared_ptr<NKESTA20::ICIMInstance> CommitEntity(const std::string& className,
                                                       const std::string& deviceId);

/// The class of the host's namespace.
boost::shared_ptr<standin::CimClass> ClassOf(const std::string& className);

/// The DeviceIDs of the committed instances of a class, in order.
std::vector<std::string> DeviceIds(const std::string& className);

/// The named property of `instance` as text.
std::string PropertyText(NKESTA20::ICIMInstance& instance, const std::string& name);

/// An array of strings.
NKESTA20::TCIMValue MakeArray(const std::vector<std::string>& texts);

class IdlePlugin : public NKESTA20::IPluginCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "Idle"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override {}
  void Init() override {}
  void DeInit() override {}
};

}  // namespace usbinfo_test
