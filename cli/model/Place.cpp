#include "cli/model/Place.h"

#include <charconv>
#include <optional>
#include <system_error>
#include <tuple>

#include "cli/model/Identifier.h"
#include "cli/model/Item.h"
#include "kernel/DeviceName.h"

namespace cli {

namespace {

/// Numbers of ports and buses have few digits; longer ones are not valid.
std::optional<std::uint32_t> ReadNumber(std::string_view text) {
  constexpr std::size_t kMaxDigits = 9;
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.size() > kMaxDigits || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

Place Place::OfTop(const Item& item) {
  Place place;
  const std::string& own = item.String(PropertyId::kDeviceID);
  if (item.Class() == ClassId::kController) {
    if (const auto bus = ReadNumber(BusOf(own))) {
      place.hasBus = true;
      place.bus = *bus;
      return place;
    }
  }
  const bool isPort = item.Class() == ClassId::kPort;
  const std::string& port = item.String(PropertyId::kPortNumber);
  place.identifier = isPort || port.empty() ? own : port;
  return place;
}

std::optional<Place> Place::OfName(std::string_view name) {
  const std::optional<kernel::DeviceName> parsed = kernel::ParseDeviceName(name);
  if (!parsed) return std::nullopt;
  Place place;
  place.hasBus = true;
  place.bus = parsed->bus;
  for (const unsigned port : parsed->ports) place.ports.push_back(port - 1);
  return place;
}

bool Place::Continue(const Place& above, const Item& item) {
  if (item.Class() != ClassId::kPort) {
    *this = above;
    return true;
  }
  const auto number = ReadNumber(PortOf(item.String(PropertyId::kDeviceID)));
  if (!number || above.ports.size() == kMaxPorts) return false;
  *this = above;
  ports.push_back(*number);
  return true;
}

bool Place::operator==(const Place& other) const {
  return hasBus == other.hasBus && bus == other.bus && identifier == other.identifier && ports == other.ports;
}

bool Place::operator<(const Place& other) const {
  return std::tie(other.hasBus, bus, identifier, ports) <
         std::tie(hasBus, other.bus, other.identifier, other.ports);
}

}  // namespace cli
