// A module whose plug-in writes every call that it gets to the core logger, so that a test can read the order
// in which a host drives it. The plug-in owns itself, as plug-ins do.
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/ICIMClass.h"
#include "host/ICIMNamespace.h"
#include "host/ILogger.h"
#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TRootObject.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::ICIMNamespace;
using NKESTA20::ILogger;
using NKESTA20::TPluginManagerNamespace;
using NKESTA20::TRootObject;

void Log(const std::string& text) {
  TRootObject::GetCoreLogger()->Write(ILogger::kStatus, text);
}

class RecordingPlugin : public NKESTA20::IPluginCallbacks, public NKESTA20::IPluginBasicQueryCallbacks {
 public:
  RecordingPlugin() {
    Log("created");
    const boost::shared_ptr<ICIMNamespace> manager = TRootObject::GetPluginManager();
    auto* const registry = dynamic_cast<TPluginManagerNamespace*>(manager.get());
    if (registry != nullptr) registry->RegisterPlugin(this);
  }
  ~RecordingPlugin() override { Log("destroyed"); }

  int GetType() override { return 7; }
  std::string GetName() override { return "Recording"; }
  std::string GetVersion() override { return "1.2"; }
  std::string GetInterfaceVersion() override { return "3.4"; }
  void PrepareForUnload() override {
    Log("PrepareForUnload");
    delete this;
  }
  void Init() override { Log("Init"); }
  void DeInit() override { Log("DeInit"); }
  void GetData(boost::shared_ptr<ICIMNamespace> ns,
               std::vector<boost::shared_ptr<ICIMClass>>& classes) override {
    std::string text = "GetData";
    for (const auto& wanted : classes) {
      text += " " + wanted->GetClassName({});
      if (wanted->GetNamespace({}) != ns) text += "(of another namespace)";
    }
    Log(text);
  }
};

const RecordingPlugin* const plugin = new RecordingPlugin;

}  // namespace
