// The plug-in object: the one object that the host loads and calls. A load-time initializer creates it, it
// registers itself with the host's plug-in manager, serves class requests, and deletes itself when the host
// prepares to unload the module.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"
#include "host/TPluginManagerProvider.h"

class TUsb;

namespace NKESTA20 {

/// Exported for the host; never used here.
extern USBINFO_HOST_API int gStarted;

class TUSBInfoCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  /// Registers the object with the host's plug-in manager; throws what the host throws.
  TUSBInfoCallbacks();
  ~TUSBInfoCallbacks() override;

  /// The type code 0.
  int GetType() override;
  std::string GetName() override;
  std::string GetVersion() override;
  std::string GetInterfaceVersion() override;
  /// Deletes the object; does nothing when called through a null pointer.
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;

  /// Serves each class of the list that the plug-in knows, in the list's order, and skips the others.
  /// `ns` is not used. What a provider throws is swallowed; what a class throws when asked for its name, or
  /// the logger, is not.
  void GetData(boost::shared_ptr<ICIMNamespace> ns,
               std::vector<boost::shared_ptr<ICIMClass>>& classes) override;

  /// Runs one provider and logs how it went; always 0.
  int RetrieveDataForClass(TUsb* provider);

 private:
  /// Passed to every provider; null, which keeps them silent, when the host has no plug-in manager.
  TPluginManagerProvider* fProviderHandle = nullptr;
};

}  // namespace NKESTA20
