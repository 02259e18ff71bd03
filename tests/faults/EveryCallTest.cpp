// Every host call of a whole run fails once, in three ways, for every captured device list: what is logged,
// skipped and still served must be what the model computes from the call, to the last line, call and
// property.
#include "tests/faults/AllScenarios.h"
#include "tests/faults/PluginRun.h"
#include "tests/model/ModelPlugin.h"
#include "tests/support/Allocations.h"

namespace usbinfo_test {
namespace {

/// Under the sanitizers a run takes ten times as long; every n-th call then stands for all.
constexpr std::size_t kCallStride = SANITIZED ? 151 : 1;

class EveryCall : public ::testing::TestWithParam<Scenario> {
 protected:
  const Scenario& scenario = GetParam();
  const ListValues list = ReadListValues(scenario.deviceList);
  const Outcome undisturbed = RunPlugin(scenario, std::nullopt);

  /// Runs both with every call failing that way, one after the other; ends at the first that differs.
  void FailEachCall(FaultKind kind) {
    RunPlugin(scenario, Fault{0, kind});  // what a first failure allocates for good
    const std::size_t live = Allocations::Live();
    int faults = 0;
    for (std::size_t call = 0; call < undisturbed.trace.Count(); call += kCallStride) {
      const Fault fault{call, kind};
      if (RunPlugin(scenario, fault) != RunModel(scenario, list, fault)) {
        const Outcome actual = RunPlugin(scenario, fault, true);
        FAIL() << NameOf(kind) << " in call " << call << " (" << actual.trace.Calls().at(call)
               << "): " << Difference(actual, RunModel(scenario, list, fault, true));
      }
      ASSERT_EQ(Allocations::Live(), live) << NameOf(kind) << " in call " << call << " leaves memory behind";
      ++faults;
    }
    RecordProperty("faults", faults);
  }
};

TEST_P(EveryCall, UndisturbedIsWhatTheModelComputes) {
  const Outcome expected = RunModel(scenario, list, std::nullopt, true);
  EXPECT_EQ(Difference(RunPlugin(scenario, std::nullopt, true), expected), "");
}

TEST_P(EveryCall, FailingWithAHostExceptionHasTheComputedOutcome) {
  FailEachCall(FaultKind::kHostException);
}

TEST_P(EveryCall, FailingWithAStandardExceptionHasTheComputedOutcome) {
  FailEachCall(FaultKind::kStandardException);
}

TEST_P(EveryCall, FailingWithAForeignExceptionHasTheComputedOutcome) {
  FailEachCall(FaultKind::kForeignException);
}

INSTANTIATE_TEST_SUITE_P(Runs, EveryCall, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace usbinfo_test
