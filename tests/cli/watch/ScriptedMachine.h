// A machine whose USB devices come and go as a script says, with its events and its time: what the watch
// works on, in memory.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/watch/Clock.h"
#include "cli/watch/UeventSource.h"
#include "tests/cli/support/InventoryBuilder.h"

namespace usbinfo_test {

/// What is plugged in somewhere.
struct Plugged {
  int number = 0;
  Model model = {};
  /// 0 for a device that is no hub.
  int ports = 0;
};

/// The bus 1 of four ports, and what is plugged in by the kernel's name: "1-3.1".
using PluggedByName = std::map<std::string, Plugged>;

/// Its inventory, as FromJson reads it.
nlohmann::json InventoryOf(const PluggedByName& plugged);

/// What the kernel sends when it comes and when it goes, in this order. It has one interface, for mass
/// storage.
std::vector<cli::UsbEvent> EventsOfAdding(const std::string& name, const Plugged& plugged);
std::vector<cli::UsbEvent> EventsOfRemoving(const std::string& name, const Plugged& plugged);

class ScriptedMachine : public cli::UeventSource, public cli::Clock {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// What happens so long after the beginning; to be called in the order of the times.
  void Plug(Milliseconds at, const std::string& name, const Plugged& plugged);
  void Unplug(Milliseconds at, const std::string& name);
  void Send(Milliseconds at, const cli::UsbEvent& event);
  void Lose(Milliseconds at);
  void Stop(Milliseconds at);
  /// The same without any event.
  void Do(Milliseconds at, std::function<void()> action);

  /// The times at which it was looked at.
  const std::vector<int>& Looks() const { return fLooks; }
  int Elapsed() const { return static_cast<int>(fNow.count()); }
  PluggedByName plugged;
  /// The message of the failure of each look; empty for none.
  std::string failure;

  cli::Inventory Collect();

  /// Says stop when the script is over and there is no deadline.
  cli::Waking Wait(std::optional<cli::Clock::Point> deadline) override;
  std::optional<cli::Waking> Receive() override;
  cli::Clock::Point Now() const override { return cli::Clock::Point(fNow); }
  std::time_t Time() const override;

 private:
  struct Step {
    Milliseconds at;
    std::function<void()> action;
    std::optional<cli::Waking> waking;
  };

  std::deque<Step> fSteps;
  std::vector<int> fLooks;
  Milliseconds fNow{0};
};

}  // namespace usbinfo_test
