// The whole plug-in on the stand-in: loaded, asked for every class of full buses, and unloaded.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"
#include "standin/PluginModule.h"
#include "tests/damage/BigLists.h"

namespace {

std::vector<std::string> AllClasses() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& served : schema::ServedClasses()) names.push_back(served.name);
  return names;
}

/// A full bus has 126 ports with something on each; the plug-in holds every dependent against the ports in
/// turn, so that the time grows with the square of the number of buses.
void CollectFullBuses(benchmark::State& state) {
  standin::Host& host = standin::Host::Instance();
  const std::string list = usbinfo_test::FullBuses(static_cast<std::size_t>(state.range(0)));
  const std::vector<std::string> classes = AllClasses();
  for ([[maybe_unused]] auto turn : state) {
    host.Reset();
    host.SetSystemName("benchmark");
    host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(list));
    standin::PluginModule(MODULE_PATH).Collect(classes);
  }
}
BENCHMARK(CollectFullBuses)->Arg(1)->Arg(8)->Arg(32)->Unit(benchmark::kMillisecond);

}  // namespace
