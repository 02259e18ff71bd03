// A module whose plug-in throws when it is asked for data; the name of the first class says what. The plug-in
// owns itself, as plug-ins do.
#include <boost/shared_ptr.hpp>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/ICIMClass.h"
#include "host/ICIMNamespace.h"
#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TRootObject.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::ICIMNamespace;
using NKESTA20::TPluginManagerNamespace;

class ThrowingPlugin : public NKESTA20::IPluginCallbacks, public NKESTA20::IPluginBasicQueryCallbacks {
 public:
  ThrowingPlugin() {
    const boost::shared_ptr<ICIMNamespace> manager = NKESTA20::TRootObject::GetPluginManager();
    dynamic_cast<TPluginManagerNamespace&>(*manager).RegisterPlugin(this);
  }

  int GetType() override { return 0; }
  std::string GetName() override { return "Throwing"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override { delete this; }
  void Init() override {}
  void DeInit() override {}
  void GetData(boost::shared_ptr<ICIMNamespace>,
               std::vector<boost::shared_ptr<ICIMClass>>& classes) override {
    const std::string wanted = classes.at(0)->GetClassName({});
    if (wanted == "exception") throw std::runtime_error("no luck");
    if (wanted == "lack of memory") throw std::bad_alloc();
    throw 7;
  }
};

const ThrowingPlugin* const plugin = new ThrowingPlugin;

}  // namespace
