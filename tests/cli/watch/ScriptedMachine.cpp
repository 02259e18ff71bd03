#include "tests/cli/watch/ScriptedMachine.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "cli/text/UserError.h"
#include "kernel/DeviceName.h"

using cli::UsbEvent;
using cli::Waking;
using nlohmann::json;

namespace usbinfo_test {

namespace {

constexpr std::time_t kBeginning = 1795348800;  // 2026-11-22T12:00:00Z

json FactsOf(const std::string& identifier, const std::string& name, const Plugged& plugged) {
  const bool hasSerial = plugged.model.serial != "Not Available";
  return {{"device", identifier},
          {"name", name},
          {"number", plugged.number},
          {"speed", 480},
          {"manufacturer", nullptr},
          {"product", plugged.model.name},
          {"serial", hasSerial ? json(plugged.model.serial) : json(nullptr)},
          {"kinds", json::array()},
          {"interfaces", json::array()},
          {"maxPower", nullptr},
          {"revision", nullptr},
          {"nodes", nullptr}};
}

UsbEvent EventOf(UsbEvent::Action action, const std::string& name, const Plugged& plugged) {
  return {.action = action,
          .name = name,
          .number = static_cast<unsigned>(plugged.number),
          .vendor = static_cast<std::uint16_t>(plugged.model.vendor),
          .product = static_cast<std::uint16_t>(plugged.model.product),
          .codes = kernel::ClassCodes{}};
}

UsbEvent EventOfInterface(UsbEvent::Action action, const std::string& name) {
  return {.action = action, .name = name + ":1.0", .codes = kernel::ClassCodes{0x08, 0x06, 0x50}};
}

}  // namespace

json InventoryOf(const PluggedByName& plugged) {
  InventoryBuilder builder;
  std::map<kernel::DeviceName, std::string> identifiers;
  identifiers[{1, {}}] = builder.AddBus(1, 4);
  json facts = json::array();
  facts.push_back(FactsOf(identifiers.begin()->second, "usb1", {1, {"Controller"}, 4}));
  std::map<kernel::DeviceName, std::pair<std::string, Plugged>> ordered;
  for (const auto& [name, what] : plugged) ordered[kernel::ParseDeviceName(name).value()] = {name, what};
  for (const auto& [place, entry] : ordered) {
    const auto& [name, what] = entry;
    kernel::DeviceName hub = place;
    hub.ports.pop_back();
    const int port = static_cast<int>(place.ports.back()) - 1;
    const std::string& parent = identifiers.at(hub);
    identifiers[place] = what.ports > 0 ? builder.AddHub(parent, port, what.number, what.ports, what.model)
                                        : builder.AddDevice(parent, port, what.number, what.model);
    facts.push_back(FactsOf(identifiers[place], name, what));
  }
  builder.Document()["kernel"] = {{"devices", facts}, {"ports", json::array()}};
  builder.Document()["origin"] = OriginExample();
  for (const char* list : {"findings", "repairs"}) builder.Document()["origin"][list] = json::array();
  for (const char* part : {"masked", "selection"}) builder.Document()["origin"][part] = nullptr;
  return builder.Document();
}

std::vector<UsbEvent> EventsOfAdding(const std::string& name, const Plugged& plugged) {
  return {EventOf(UsbEvent::Action::kAdd, name, plugged), EventOfInterface(UsbEvent::Action::kAdd, name)};
}

std::vector<UsbEvent> EventsOfRemoving(const std::string& name, const Plugged& plugged) {
  return {EventOfInterface(UsbEvent::Action::kRemove, name),
          EventOf(UsbEvent::Action::kRemove, name, plugged)};
}

void ScriptedMachine::Plug(Milliseconds at, const std::string& name, const Plugged& what) {
  Do(at, [this, name, what] { plugged[name] = what; });
  for (const UsbEvent& event : EventsOfAdding(name, what)) Send(at, event);
}

void ScriptedMachine::Unplug(Milliseconds at, const std::string& name) {
  Do(at, [this, name] {
    const auto found = plugged.find(name);
    std::size_t place = 0;
    for (const UsbEvent& event : EventsOfRemoving(name, found->second)) {
      fSteps.insert(fSteps.begin() + static_cast<std::ptrdiff_t>(place++),
                    Step{fNow, {}, Waking{Waking::Cause::kEvent, event}});
    }
    plugged.erase(found);
  });
}

void ScriptedMachine::Send(Milliseconds at, const UsbEvent& event) {
  fSteps.push_back(Step{at, {}, Waking{Waking::Cause::kEvent, event}});
}

void ScriptedMachine::Lose(Milliseconds at) {
  fSteps.push_back(Step{at, {}, Waking{Waking::Cause::kLoss}});
}

void ScriptedMachine::Stop(Milliseconds at) {
  fSteps.push_back(Step{at, {}, Waking{Waking::Cause::kStop}});
}

void ScriptedMachine::Do(Milliseconds at, std::function<void()> action) {
  fSteps.push_back(Step{at, std::move(action), std::nullopt});
}

cli::Inventory ScriptedMachine::Collect() {
  fLooks.push_back(Elapsed());
  if (!failure.empty()) throw cli::UserError(failure);
  return cli::FromJson(InventoryOf(plugged).dump(), "scripted");
}

Waking ScriptedMachine::Wait(std::optional<cli::Clock::Point> deadline) {
  while (!fSteps.empty() && (!deadline || cli::Clock::Point(fSteps.front().at) <= *deadline)) {
    const Step step = std::move(fSteps.front());
    fSteps.pop_front();
    fNow = std::max(fNow, step.at);
    if (step.action) step.action();
    if (step.waking) return *step.waking;
  }
  if (!deadline) return {Waking::Cause::kStop};
  fNow = std::max(fNow, std::chrono::ceil<Milliseconds>(deadline->time_since_epoch()));
  return {Waking::Cause::kDeadline};
}

std::optional<Waking> ScriptedMachine::Receive() {
  while (!fSteps.empty() && fSteps.front().at <= fNow) {
    const Step step = std::move(fSteps.front());
    fSteps.pop_front();
    if (step.action) step.action();
    if (step.waking) return step.waking;
  }
  return std::nullopt;
}

std::time_t ScriptedMachine::Time() const {
  return kBeginning + std::chrono::duration_cast<std::chrono::seconds>(fNow).count();
}

}  // namespace usbinfo_test
