#include "tests/fuzz/PluginTarget.h"

#include "cli/model/FromKernel.h"
#include "kernel/DeviceListReader.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/ReadBack.h"
#include "tests/fuzz/SavedInventory.h"
#include "tests/model/ModelPlugin.h"
#include "tests/support/AllClasses.h"
#include "tests/support/RecordedSystem.h"

namespace usbinfo_test {

namespace {

/// What must be held and logged after a request for all classes over `text`.
Outcome ExpectedOutcome(const std::string& text) {
  const Scenario scenario{"", text, ListPlace::kProcFile, kAllClasses};
  Outcome expected = RunModel(scenario, ReadListValues(text), std::nullopt);
  // The host's calls and the questions to the machine are not recorded here.
  expected.trace = CallTrace();
  expected.machineCalls.clear();
  return expected;
}

/// The properties of `item` as texts.
Properties PropertiesOf(const cli::Item& item) {
  Properties properties;
  for (std::size_t index = 0; index < item.Schema().properties.size(); ++index) {
    if (item.At(index).index() == 0) continue;
    properties.emplace(item.Schema().properties[index].name, cli::TextOf(item.At(index)));
  }
  return properties;
}

Outcome OutcomeOf(const PluginRun& run) {
  Outcome outcome;
  outcome.log = run.Log();
  for (const cli::ItemsOfClass& ofClass : run.Result().Classes()) {
    for (const cli::Item& item : ofClass.items) {
      outcome.instances[ofClass.schema->name].push_back(PropertiesOf(item));
    }
  }
  return outcome;
}

}  // namespace

std::size_t ItemsIn(const std::string& text) {
  std::size_t items = 0;
  for (const RecordValues& record : ReadListValues(text).records) {
    items += 1 + (record.isHub ? record.PortsMade() : 0);
  }
  return items;
}

void CheckInventory(const PluginRun& run, const std::string& text) {
  const std::string difference = Difference(OutcomeOf(run), ExpectedOutcome(text));
  if (!difference.empty()) throw BrokenInvariant(difference);
}

void CheckPlugin(const std::string& text, DistinctLines& known) {
  SetSystemHook([](const std::string&) { throw BrokenInvariant("a command was run"); });
  const PluginRun run(text);
  SetSystemHook(nullptr);
  CheckInventory(run, text);
  CheckEveryFormat(run.Result());
  DistinctLines fresh;
  for (const LogLine& line : run.Log()) {
    if (known.insert(line).second) fresh.insert(line);
  }
  CheckLog(fresh);
}

void CheckFacts(const std::string& text) {
  cli::Inventory inventory = PluginRun(text).Result();
  inventory.SetKernel(cli::FromKernel(kernel::ReadDeviceList(text), inventory));
  CheckSaved(inventory);
  CheckHarmless(inventory);
}

void CheckPlugin(const std::string& text) {
  DistinctLines known;
  CheckPlugin(text, known);
}

}  // namespace usbinfo_test
