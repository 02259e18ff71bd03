#include "tests/faults/PluginRun.h"

#include <memory>
#include <stdexcept>

#include "host/TQSVException.h"
#include "standin/Host.h"
#include "standin/HostSeam.h"
#include "standin/PluginModule.h"
#include "standin/StatusCode.h"
#include "standin/ValueView.h"
#include "tests/faults/AllScenarios.h"
#include "tests/support/AllClasses.h"
#include "tests/support/Allocations.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RecordedSystem.h"

using standin::Host;
using standin::HostCall;
using standin::HostSeam;

namespace usbinfo_test {

namespace {

struct ForeignException {};

[[noreturn]] void ThrowFault(FaultKind kind) {
  if (kind == FaultKind::kHostException) standin::Throw(standin::StatusCode::kFailed);
  if (kind == FaultKind::kStandardException) throw std::runtime_error("the host has failed");
  throw ForeignException();
}

/// A fresh host whose log, machine and calls go into `outcome` for as long as this lives.
class RecordedHost {
 public:
  RecordedHost(const Scenario& scenario, Outcome& outcome) : fOutcome(outcome) {
    fHost.Reset();
    fHost.SetSystemName("testhost");
    auto owned = std::make_unique<FakeOperatingSystem>(&outcome.machineCalls);
    FakeOperatingSystem* const machine = owned.get();
    Furnish(*machine, scenario);
    fHost.SetOperatingSystem(std::move(owned));
    SetSystemHook([this, machine](const std::string& command) {
      const Allocations::Pause pause;
      fOutcome.machineCalls.push_back("system " + command);
      machine->onCall(fOutcome.machineCalls.back());
    });
    fHost.CoreLogger().SetSink([this](NKESTA20::ILogger::EQSVLogSeverity severity, const std::string& text) {
      const Allocations::Pause pause;
      fOutcome.log.push_back({severity, text});
    });
  }
  RecordedHost(const RecordedHost&) = delete;
  RecordedHost& operator=(const RecordedHost&) = delete;

  ~RecordedHost() {
    HostSeam::SetObserver(nullptr);
    SetSystemHook(nullptr);
    fHost.Reset();
  }

  void Watch(const std::optional<Fault>& fault) {
    HostSeam::SetObserver([this, fault](const HostCall& call) {
      const Allocations::Pause pause;
      const std::size_t number = fOutcome.trace.Count();
      fOutcome.trace.Add(call.operation, call.subject);
      if (fault && fault->call == number) ThrowFault(fault->kind);
    });
  }

  void KeepInstances() {
    for (const std::string& className : kAllClasses) {
      for (const auto& instance : fHost.Cimv2()->ClassForRequest(className)->Instances()) {
        Properties properties;
        for (const auto& [name, value] : instance->Properties()) {
          properties.emplace(name, standin::TextOf(value));
        }
        fOutcome.instances[className].push_back(std::move(properties));
      }
    }
  }

 private:
  Host& fHost = Host::Instance();
  Outcome& fOutcome;
};

/// What leaves `request`, as Outcome names it.
template <typename Request>
std::string LeavingOf(Request request) {
  try {
    request();
  } catch (const NKESTA20::TQSVException&) {
    return NameOf(FaultKind::kHostException);
  } catch (const std::exception&) {
    return NameOf(FaultKind::kStandardException);
  } catch (const ForeignException&) {
    return NameOf(FaultKind::kForeignException);
  }
  return "nothing";
}

}  // namespace

Outcome RunPlugin(const Scenario& scenario, const std::optional<Fault>& fault, bool keepsCalls) {
  Outcome outcome;
  outcome.trace = CallTrace(keepsCalls);
  RecordedHost host(scenario, outcome);
  standin::PluginModule module(MODULE_PATH);
  host.Watch(fault);
  outcome.leaving = LeavingOf([&] { module.Collect(scenario.request); });
  HostSeam::SetObserver(nullptr);
  host.KeepInstances();
  return outcome;
}

AllocationRun RunPluginShortOfMemory(const Scenario& scenario, std::size_t allocation, bool keepsCalls) {
  AllocationRun run;
  run.outcome.trace = CallTrace(keepsCalls);
  RecordedHost host(scenario, run.outcome);
  standin::PluginModule module(MODULE_PATH);
  host.Watch(std::nullopt);
  run.outcome.leaving = LeavingOf([&] {
    const Allocations::Failure failure(allocation, [&run] { run.callsBefore = run.outcome.trace.Count(); });
    module.Collect(scenario.request);
  });
  HostSeam::SetObserver(nullptr);
  host.KeepInstances();
  return run;
}

}  // namespace usbinfo_test
