// The expected inventory; see the header.
#include "tests/fuzz/InventoryModel.h"

#include <algorithm>

namespace usbinfo_test {

namespace {

constexpr std::uint16_t kMaxPorts = 255;

std::string Padded(const std::string& number, std::size_t width, char fill) {
  return number.size() < width ? std::string(width - number.size(), fill) + number : number;
}

std::string Identifier(std::string_view bus, std::string_view number) {
  return "Bus " + std::string(bus) + " Device " + std::string(number);
}

}  // namespace

std::uint16_t ReadShort(std::string_view text) {
  const std::size_t start = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  text.remove_prefix(start);
  const bool isNegative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  unsigned long number = 0;
  for (; !text.empty() && text[0] >= '0' && text[0] <= '9'; text.remove_prefix(1)) {
    number = std::min(number * 10 + static_cast<unsigned long>(text[0] - '0'), 0x10000UL);
  }
  if (number > 0xFFFF) return 0xFFFF;
  return static_cast<std::uint16_t>(isNegative ? 0x10000 - number : number);
}

InventoryModel::InventoryModel(const std::vector<ModelRecord>& records) {
  for (const ModelRecord& record : records) {
    const auto& fields = record.fields;
    const std::string identifier = Identifier(fields[kBus], fields[kNumber]);
    Place place;
    place.depth = ReadShort(fields[kLevel]);
    if (place.depth != 0) {
      place.hub = Identifier(fields[kBus], Padded(std::to_string(ReadShort(fields[kParent])), 3, ' '));
      place.port = place.hub + " Port " + std::string(fields[kPort]);
    }
    if (!record.isHub) {
      fDevices.Add(identifier, place);
      continue;
    }
    if (fields[kLevel] == "00") fControllers.Add(identifier, Place());
    AddHub(record, identifier, place);
  }
}

void InventoryModel::Entries::Add(const std::string& identifier, const Place& place) {
  if (places.count(identifier) == 0) order.push_back(identifier);
  places[identifier] = place;
}

void InventoryModel::AddHub(const ModelRecord& record, const std::string& identifier, Place place) {
  fHubs.Add(identifier, place);
  const std::uint16_t count = std::min(ReadShort(record.fields[kMaxChildren]), kMaxPorts);
  for (std::uint16_t index = 0; index < count; ++index) {
    place.hub = identifier;
    place.port = identifier + " Port " + Padded(std::to_string(index), 2, '0');
    fPorts.Add(place.port, place);
  }
}

InventoryModel::Links InventoryModel::PortsOnHubs() const {
  Links links;
  for (const auto& [identifier, port] : fPorts.places) {
    const auto hub = fHubs.places.find(port.hub);
    if (hub != fHubs.places.end() && hub->second.depth == port.depth) links.emplace(port.hub, identifier);
  }
  return links;
}

InventoryModel::Links InventoryModel::Connections() const {
  Links links;
  Connect(fDevices, "", links);
  Connect(fHubs, "hub ", links);
  return links;
}

void InventoryModel::Connect(const Entries& dependents, const std::string& prefix, Links& links) const {
  for (const auto& [identifier, dependent] : dependents.places) {
    const auto port = fPorts.places.find(dependent.port);
    if (dependent.depth == 0 || port == fPorts.places.end()) continue;
    const bool fits = port->second.depth == dependent.depth - 1 && port->second.hub == dependent.hub;
    if (fits) links.emplace(dependent.port, prefix + identifier);
  }
}

}  // namespace usbinfo_test
