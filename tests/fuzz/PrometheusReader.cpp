#include "tests/fuzz/PrometheusReader.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "cli/model/Kinds.h"
#include "tests/cli/support/Exposition.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/LinkModel.h"
#include "tests/fuzz/Utf8.h"

using cli::DeviceFacts;
using cli::PortFacts;
using cli::PropertyId;

namespace usbinfo_test {

namespace {

constexpr std::size_t kMostSeries = 1000;

using Counts = std::map<std::string, std::size_t>;

/// The last facts about an item; null for none.
template <typename Facts>
const Facts* FactsOf(const cli::Item& item, const std::vector<Facts>& all, std::string Facts::*identifier) {
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](const Facts& facts) {
    return facts.*identifier == item.String(PropertyId::kDeviceID);
  });
  return found == all.rend() ? nullptr : &*found;
}

const DeviceFacts* DeviceFactsOf(const cli::Item& item, const cli::Inventory& inventory) {
  if (!inventory.Kernel()) return nullptr;
  return FactsOf(item, inventory.Kernel()->devices, &DeviceFacts::device);
}

std::string StateOf(const LinkedItem& port, const cli::Inventory& inventory) {
  if (!port.IsFree()) return "in use";
  if (!inventory.Kernel()) return "free";
  const PortFacts* const facts = FactsOf(*port.item, inventory.Kernel()->ports, &PortFacts::port);
  if (facts == nullptr) return "free";
  if (facts->isUsed && *facts->isUsed) return "in use";
  if (facts->connect && *facts->connect == "not used") return "not used";
  return facts->isUsed ? "free" : "unknown";
}

std::size_t CountCharacters(const std::string& text) {
  std::size_t count = 0;
  ForEachCharacter(ReplaceBrokenUtf8(text), [&count](std::uint32_t) { ++count; });
  return count;
}

/// The value of a label for a string of a device.
std::string LabelOf(const std::string& sent) {
  constexpr std::size_t kMost = 128;
  if (sent == "Not Available") return std::string();
  for (std::size_t length = kMost + 1; length <= sent.size(); ++length) {
    // The last byte begins a character too many.
    if (CountCharacters(sent.substr(0, length)) > kMost) return AsShown(sent.substr(0, length - 1)) + "...";
  }
  return AsShown(sent);
}

std::string SentOf(const cli::Item& item, PropertyId property, const DeviceFacts* facts,
                   std::optional<std::string> DeviceFacts::*known) {
  return LabelOf(facts == nullptr ? item.String(property) : (facts->*known).value_or(""));
}

std::vector<std::string> KindsOf(const DeviceFacts* facts) {
  return facts == nullptr || facts->kinds.empty() ? std::vector<std::string>{"unknown"} : facts->kinds;
}

/// What a device's series shows besides its place.
MetricLabels LabelsOf(const LinkedItem& item, const cli::Inventory& inventory) {
  const DeviceFacts* const facts = DeviceFactsOf(*item.item, inventory);
  std::string kind;
  for (const std::string& each : KindsOf(facts)) kind += (kind.empty() ? "" : ", ") + each;
  return {{"vid", item.Id().substr(0, 4)},
          {"pid", item.Id().substr(5)},
          {"kind", kind},
          {"vendor", SentOf(*item.item, PropertyId::kManufacturer, facts, &DeviceFacts::manufacturer)},
          {"product", SentOf(*item.item, PropertyId::kDescription, facts, &DeviceFacts::product)}};
}

void CheckCounts(const MetricSamples& samples, const std::string& label, Counts expected,
                 const std::vector<std::string>& values) {
  for (const std::string& value : values) expected[value];
  RequireCount(samples.size(), expected.size(), "series of the counts");
  for (const auto& [value, count] : expected) {
    RequireEqual(samples.at({{label, value}}), std::to_string(count), value.c_str());
  }
}

void CheckDevices(const Exposition& metrics, const std::vector<LinkedItem>& items,
                  const cli::Inventory& inventory) {
  std::multiset<MetricLabels> expected;
  for (const LinkedItem& item : items) expected.insert(LabelsOf(item, inventory));
  std::set<std::string> places;
  for (const auto& [labels, value] : metrics.at("usbinfo_device_info")) {
    RequireEqual(value, "1", "the value of a device");
    Require(places.insert(labels.at("place")).second, "no place has two devices");
    Require(!labels.at("place").empty(), "a device has a place");
    MetricLabels others = labels;
    others.erase("place");
    const auto found = expected.find(others);
    Require(found != expected.end(), "a series for each device");
    expected.erase(found);
  }
  RequireCount(places.size(), std::min(items.size(), kMostSeries), "series of devices");
  RequireEqual(ValueOf(metrics, "usbinfo_devices_omitted"), std::to_string(expected.size()),
               "devices without a series");
}

}  // namespace

void CheckPrometheus(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForTerminal(document, false);
  const Exposition metrics = ReadExposition(document);
  const std::vector<LinkedItem> items = ListedItems(inventory);
  CheckDevices(metrics, items, inventory);
  Counts kinds;
  for (const LinkedItem& item : items) {
    for (const std::string& kind : KindsOf(DeviceFactsOf(*item.item, inventory))) ++kinds[kind];
  }
  std::vector<std::string> allKinds = cli::AllKinds();
  allKinds.emplace_back("unknown");
  CheckCounts(metrics.at("usbinfo_devices"), "kind", kinds, allKinds);
  Counts states;
  for (const LinkedItem& item : LinkItems(inventory)) {
    if (item.kind == "port") ++states[StateOf(item, inventory)];
  }
  CheckCounts(metrics.at("usbinfo_sockets"), "state", states, {"free", "in use", "not used", "unknown"});
}

}  // namespace usbinfo_test
