// Single operations of the stand-in, through the host's interfaces as a plug-in calls them.
#include <benchmark/benchmark.h>

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/ICIMClass.h"
#include "host/ICIMInstance.h"
#include "host/ICIMNamespace.h"
#include "host/ICIMProperty.h"
#include "host/TAddToVectorCallback.h"
#include "standin/Host.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::TCIMValue;
using standin::Host;

namespace {

boost::shared_ptr<ICIMClass> FreshPortClass() {
  Host::Instance().Reset();
  return Host::Instance().Cimv2()->GetClass("KALDO_USBPort", {});
}

boost::shared_ptr<ICIMInstance> MakePort(ICIMClass& ports, const std::string& id) {
  boost::shared_ptr<ICIMInstance> port = ports.CreateInstance({});
  port->SetProperty("CreationClassName", TCIMValue("KALDO_USBPort"), {});
  port->SetProperty("DeviceID", TCIMValue(id), {});
  port->SetProperty("HubDepth", TCIMValue(static_cast<unsigned short>(1)), {});
  port->SetProperty("PortNumber", TCIMValue(id), {});
  port->SetProperty("SystemCreationClassName", TCIMValue("KALDO_ComputerSystem"), {});
  port->SetProperty("SystemName", TCIMValue("benchmark"), {});
  return port;
}

void CommitPorts(ICIMClass& ports, int count) {
  for (int number = 0; number < count; ++number) {
    MakePort(ports, "Bus 01  Device   1 Port " + std::to_string(number))->Commit({});
  }
}

void SetProperty(benchmark::State& state) {
  const auto ports = FreshPortClass();
  const auto port = MakePort(*ports, "Bus 01  Device   1 Port 00");
  const TCIMValue value("Bus 01  Device   1");
  for ([[maybe_unused]] auto turn : state) port->SetProperty("HubName", value, {});
}
BENCHMARK(SetProperty);

void GetNumber(benchmark::State& state) {
  const auto ports = FreshPortClass();
  const auto port = MakePort(*ports, "Bus 01  Device   1 Port 00");
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(static_cast<unsigned short>(port->GetProperty("HubDepth", {})->GetValue({})));
  }
}
BENCHMARK(GetNumber);

void GetText(benchmark::State& state) {
  const auto ports = FreshPortClass();
  const auto port = MakePort(*ports, "Bus 01  Device   1 Port 00");
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(port->GetProperty("PortNumber", {})->GetValueAsText());
  }
}
BENCHMARK(GetText);

void GetObjectPath(benchmark::State& state) {
  const auto ports = FreshPortClass();
  const auto port = MakePort(*ports, "Bus 01  Device   1 Port 00");
  for ([[maybe_unused]] auto turn : state) benchmark::DoNotOptimize(port->GetObjectPath({}));
}
BENCHMARK(GetObjectPath);

/// Makes, fills and commits as many ports as the argument says.
void Commit(benchmark::State& state) {
  for ([[maybe_unused]] auto turn : state) {
    const auto ports = FreshPortClass();
    CommitPorts(*ports, static_cast<int>(state.range(0)));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Commit)->Arg(126)->Arg(4032);

void Enumerate(benchmark::State& state) {
  const auto ports = FreshPortClass();
  CommitPorts(*ports, static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto turn : state) {
    std::vector<boost::shared_ptr<ICIMInstance>> all;
    ports->EnumerateInstances(NKESTA20::TAddToVectorCallback<ICIMInstance>(all), 0, {});
    benchmark::DoNotOptimize(all.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Enumerate)->Arg(126)->Arg(4032);

}  // namespace
