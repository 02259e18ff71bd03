// Every memory allocation of a whole run fails once. The exception takes the way of any that is not the
// host's: it ends the class being served or, outside of a provider, the request. What had been filed by then
// depends on which side of the failing allocation it stands, so the outcome must be one of those that the
// model computes for a fault in the call that was running, right after it, or right before the next.
#include <algorithm>

#include "tests/faults/AllScenarios.h"
#include "tests/faults/PluginRun.h"
#include "tests/model/ModelPlugin.h"
#include "tests/support/Allocations.h"

namespace usbinfo_test {
namespace {

/// Under the sanitizers a run takes ten times as long; every n-th allocation then stands for all.
constexpr std::size_t kAllocationStride = SANITIZED ? 797 : 1;

class EveryAllocation : public ::testing::TestWithParam<Scenario> {
 protected:
  /// The outcomes that fit a failure when `callsBefore` calls had begun.
  std::vector<Outcome> FittingOutcomes(std::size_t callsBefore, bool keepsCalls = false) const {
    using Moment = Fault::Moment;
    const FaultKind kind = FaultKind::kStandardException;
    std::vector<Outcome> outcomes;
    const auto add = [&](std::size_t call, Moment moment) {
      outcomes.push_back(RunModel(scenario, list, Fault{call, kind, moment}, keepsCalls));
    };
    if (callsBefore > 0) add(callsBefore - 1, Moment::kInCall);
    if (callsBefore > 0) add(callsBefore - 1, Moment::kRightAfter);
    add(callsBefore, Moment::kRightBefore);
    return outcomes;
  }

  const Scenario& scenario = GetParam();
  const ListValues list = ReadListValues(scenario.deviceList);
};

TEST_P(EveryAllocation, FailingHasAComputedOutcome) {
  RunPlugin(scenario, Fault{0, FaultKind::kHostException});  // what a first failure allocates for good
  const std::size_t live = Allocations::Live();
  std::optional<std::size_t> callsBefore;
  std::vector<Outcome> fitting;
  int faults = 0;
  for (std::size_t allocation = 0;; allocation += kAllocationStride) {
    const AllocationRun run = RunPluginShortOfMemory(scenario, allocation);
    if (!run.callsBefore) break;
    ++faults;
    if (run.callsBefore != callsBefore) fitting = FittingOutcomes(*run.callsBefore);
    callsBefore = run.callsBefore;
    if (std::find(fitting.begin(), fitting.end(), run.outcome) == fitting.end()) {
      const Outcome actual = RunPluginShortOfMemory(scenario, allocation, true).outcome;
      FAIL() << "allocation " << allocation << " fails after " << *callsBefore
             << " calls: " << Difference(actual, FittingOutcomes(*callsBefore, true).back());
    }
  }
  fitting.clear();
  fitting.shrink_to_fit();
  EXPECT_EQ(Allocations::Live(), live) << "memory is left behind";
  RecordProperty("faults", faults);
}

INSTANTIATE_TEST_SUITE_P(Runs, EveryAllocation, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace usbinfo_test
