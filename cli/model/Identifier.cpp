#include "cli/model/Identifier.h"

namespace cli {

namespace {

constexpr std::string_view kDeviceMarker = " Device ";
constexpr std::string_view kPortMarker = " Port ";

/// What follows the last `marker`, or the whole text without one, without the blanks around it.
std::string_view TextAfter(std::string_view text, std::string_view marker) {
  const std::size_t found = text.rfind(marker);
  if (found != std::string_view::npos) text.remove_prefix(found + marker.size());
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string_view BusOf(std::string_view identifier) {
  return TextAfter(identifier.substr(0, identifier.find(kDeviceMarker)), "Bus ");
}

std::string_view DeviceOf(std::string_view identifier) {
  return TextAfter(identifier, kDeviceMarker);
}

std::string_view PortOf(std::string_view identifier) {
  return TextAfter(identifier, kPortMarker);
}

std::string_view HubOf(std::string_view portIdentifier) {
  return portIdentifier.substr(0, portIdentifier.rfind(kPortMarker));
}

}  // namespace cli
