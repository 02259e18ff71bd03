// The watch's lines, replayed over the baseline, give the inventory in the end, whatever is plugged and
// unplugged, and however quickly; every device that no look has seen is reported as come and gone; and each
// one that a policy does not allow is reported once while it stays.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/policy/PolicyParser.h"
#include "cli/watch/PolicyAudit.h"
#include "cli/watch/WatchReport.h"
#include "cli/watch/Watcher.h"
#include "kernel/DeviceName.h"
#include "tests/cli/watch/Replay.h"
#include "tests/cli/watch/ScriptedMachine.h"

using nlohmann::json;
using std::chrono::milliseconds;

namespace usbinfo_test {
namespace {

/// A device that was plugged in, by its name and number.
using Stay = std::pair<std::string, int>;

/// Devices that are not allowed, each by its name, product and serial number.
using NotAllowed = std::set<std::string>;

constexpr const char* kPolicy = "reject serial \"S1\"\nblock name \"Model 3\"\nallow\n";

/// What the policy does not allow.
NotAllowed NotAllowedOf(const PluggedByName& all) {
  NotAllowed devices;
  for (const auto& [name, plugged] : all) {
    const Model& model = plugged.model;
    if (model.serial != "S1" && model.name != "Model 3") continue;
    devices.insert(fmt::format("{} {} {}", name, model.name, model.serial));
  }
  return devices;
}

std::string TextOf(const json& refused) {
  return fmt::format("{} {} {}", refused["name"].get<std::string>(), refused["product"].get<std::string>(),
                     refused["serial"].is_null() ? "Not Available" : refused["serial"].get<std::string>());
}

/// Makes the script of a random machine: what is plugged in where, and for how long.
class RandomScript {
 public:
  RandomScript(unsigned seed, ScriptedMachine& machine, bool losesEvents)
      : fRandom(seed), fMachine(machine), fLosesEvents(losesEvents) {}

  /// All devices that are ever plugged in.
  const std::set<Stay>& Stays() const { return fStays; }

  void Write(int steps) {
    for (int step = 0; step < steps; ++step) {
      fAt += milliseconds(Pick(8) == 0 ? 2000 : Pick(400));
      if (fPlugged.empty() || Pick(2) == 0) {
        PlugSomething();
      } else {
        UnplugSomething();
      }
    }
  }

 private:
  int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(fRandom); }

  /// A place that nothing is plugged into; empty for a hub that is full.
  std::string FreePlace() {
    std::vector<std::string> hubs = {"usb1"};
    for (const auto& [name, plugged] : fPlugged) {
      const bool isDeep = kernel::ParseDeviceName(name)->ports.size() > 2;
      if (plugged.ports > 0 && !isDeep) hubs.push_back(name);
    }
    const auto hub =
        kernel::ParseDeviceName(hubs[static_cast<std::size_t>(Pick(static_cast<int>(hubs.size())))]);
    const std::string name = hub->Child(static_cast<unsigned>(Pick(4)) + 1).Text();
    return fPlugged.count(name) == 0 ? name : std::string();
  }

  /// Models with and without a serial number, some serial numbers on several devices.
  Plugged Something() {
    const int product = Pick(5);
    const bool isHub = product == 0;
    const std::string serial = Pick(2) == 0 ? "Not Available" : fmt::format("S{}", Pick(3));
    return {++fLastNumber, {fmt::format("Model {}", product), serial, 0x1234, product}, isHub ? 4 : 0};
  }

  void PlugSomething() {
    const std::string name = FreePlace();
    if (name.empty()) return;
    const Plugged plugged = Something();
    fPlugged[name] = plugged;
    fStays.insert({name, plugged.number});
    Happen([this, name, plugged] { fMachine.plugged[name] = plugged; }, EventsOfAdding(name, plugged));
  }

  /// With all that is plugged into it.
  void UnplugSomething() {
    auto at = fPlugged.begin();
    std::advance(at, Pick(static_cast<int>(fPlugged.size())));
    const std::string top = at->first;
    std::vector<std::string> names;
    for (const auto& [name, plugged] : fPlugged) {
      if (name == top || name.starts_with(top + ".")) names.push_back(name);
    }
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
      Happen([this, gone = *name] { fMachine.plugged.erase(gone); },
             EventsOfRemoving(*name, fPlugged[*name]));
      fPlugged.erase(*name);
    }
  }

  void Happen(std::function<void()> change, const std::vector<cli::UsbEvent>& events) {
    fMachine.Do(fAt, std::move(change));
    if (fLosesEvents && Pick(4) == 0) {
      fMachine.Lose(fAt);
    } else {
      for (const cli::UsbEvent& event : events) fMachine.Send(fAt, event);
    }
  }

  std::mt19937 fRandom;
  ScriptedMachine& fMachine;
  bool fLosesEvents;
  PluggedByName fPlugged;
  std::set<Stay> fStays;
  int fLastNumber = 1;
  milliseconds fAt{0};
};

/// Follows a machine to the end of its script, and reads what is printed.
class Reader {
 public:
  explicit Reader(ScriptedMachine& machine) : fMachine(machine) {
    cli::Watcher watcher({.events = machine,
                          .clock = machine,
                          .collect = [this] { return Collect(); },
                          .print = [this](const cli::WatchReport& report) { Take(RenderWatchJson(report)); },
                          .audit = &fAudit},
                         {}, cli::FromJson(InventoryOf({}).dump(), "known"));
    EXPECT_TRUE(watcher.Follow());
  }

  const DevicesByPlace& Devices() const { return fDevices; }
  const std::set<Stay>& CameAndWent() const { return fCameAndWent; }
  bool HasSeen(const Stay& stay) const { return fSeen.count(stay) > 0; }
  /// The devices that are not allowed and were not so before, for each look that found some: what was
  /// printed, and what the machine had.
  const std::vector<NotAllowed>& Printed() const { return fPrinted; }
  const std::vector<NotAllowed>& Expected() const { return fExpected; }

 private:
  cli::Inventory Collect() {
    for (const auto& [name, plugged] : fMachine.plugged) fSeen.insert({name, plugged.number});
    const NotAllowed before = std::exchange(fNotAllowed, NotAllowedOf(fMachine.plugged));
    NotAllowed added;
    std::set_difference(fNotAllowed.begin(), fNotAllowed.end(), before.begin(), before.end(),
                        std::inserter(added, added.end()));
    if (!added.empty()) fExpected.push_back(added);
    return fMachine.Collect();
  }

  void Take(const std::string& line) {
    const json report = json::parse(line);
    EXPECT_EQ(report["sequence"], ++fReports);
    fDevices = Apply(report["difference"], fDevices);
    for (const json& visitor : report["cameAndWent"]) {
      const Stay stay(visitor["name"].get<std::string>(), visitor["number"].get<int>());
      EXPECT_TRUE(fCameAndWent.insert(stay).second) << visitor;
    }
    NotAllowed printed;
    for (const json& refused : report["notAllowed"]) printed.insert(TextOf(refused));
    if (!printed.empty()) fPrinted.push_back(printed);
  }

  ScriptedMachine& fMachine;
  DevicesByPlace fDevices = DevicesOf(InventoryOf({}));
  std::set<Stay> fCameAndWent;
  std::set<Stay> fSeen;
  cli::PolicyAudit fAudit{cli::ParsePolicy(kPolicy, "rules.conf")};
  NotAllowed fNotAllowed;
  std::vector<NotAllowed> fPrinted;
  std::vector<NotAllowed> fExpected;
  int fReports = 0;
};

class ReplayTest : public testing::TestWithParam<bool> {};

TEST_P(ReplayTest, GivesTheFinalInventoryAndAllThatCameAndWentOrIsNotAllowed) {
  const bool losesEvents = GetParam();
  std::size_t unseen = 0;
  std::size_t refused = 0;
  for (unsigned seed = 0; seed < 40 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    ScriptedMachine machine;
    RandomScript script(seed, machine, losesEvents);
    script.Write(40);
    const Reader reader(machine);
    EXPECT_EQ(reader.Devices(), DevicesOf(InventoryOf(machine.plugged)));
    refused += reader.Printed().size();
    EXPECT_EQ(reader.Printed(), reader.Expected());
    if (losesEvents) continue;
    std::set<Stay> expected;
    for (const Stay& stay : script.Stays()) {
      if (!reader.HasSeen(stay)) expected.insert(stay);
    }
    EXPECT_EQ(reader.CameAndWent(), expected);
    unseen += expected.size();
  }
  EXPECT_EQ(unseen > 0, !losesEvents);
  EXPECT_GT(refused, 0U);
}

INSTANTIATE_TEST_SUITE_P(Events, ReplayTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "SomeLost" : "AllThere"; });

}  // namespace
}  // namespace usbinfo_test
