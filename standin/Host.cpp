#include "standin/Host.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/make_shared.hpp>
#include <climits>

#include "standin/Machine.h"
#include "standin/PluginManager.h"

namespace standin {

Host& Host::Instance() {
  static Host host;
  return host;
}

void Host::Reset() {
  fSystemName.clear();
  fServices = std::make_unique<Machine>();
  fManager = boost::make_shared<standin::PluginManager>();
  fLogger.SetSink(nullptr);
  fNamespace = Namespace::Make();
  fPlugins.clear();
}

std::string Host::SystemName() const {
  if (!fSystemName.empty()) return fSystemName;
  std::array<char, HOST_NAME_MAX + 2> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "localhost";
}

void Host::Forget(NKESTA20::IPluginCallbacks* plugin) {
  fPlugins.erase(std::remove(fPlugins.begin(), fPlugins.end(), plugin), fPlugins.end());
}

}  // namespace standin
