#include "kernel/DeviceName.h"

#include "kernel/Number.h"

namespace kernel {
namespace {

constexpr unsigned kMostBuses = 65535;

/// "3.1", or "0" for a root hub.
std::string PortPath(const DeviceName& name) {
  if (name.IsRootHub()) return "0";
  std::string text;
  for (const unsigned port : name.ports) text += (text.empty() ? "" : ".") + std::to_string(port);
  return text;
}

}  // namespace

DeviceName DeviceName::Child(unsigned port) const {
  DeviceName child = *this;
  child.ports.push_back(port);
  return child;
}

std::string DeviceName::Text() const {
  return IsRootHub() ? "usb" + std::to_string(bus) : std::to_string(bus) + "-" + PortPath(*this);
}

std::string DeviceName::Interface(unsigned configuration, unsigned interface) const {
  return std::to_string(bus) + "-" + PortPath(*this) + ":" + std::to_string(configuration) + "." +
         std::to_string(interface);
}

std::string DeviceName::Port(unsigned port) const {
  return Text() + "-port" + std::to_string(port);
}

std::optional<DeviceName> ParseDeviceName(std::string_view text) {
  constexpr std::string_view kRootHub = "usb";
  if (text.starts_with(kRootHub)) {
    const auto bus = ParseNumber(text.substr(kRootHub.size()), kMostBuses);
    return bus ? std::optional(DeviceName{*bus, {}}) : std::nullopt;
  }
  const std::size_t dash = text.find('-');
  const auto bus = ParseNumber(text.substr(0, dash), kMostBuses);
  if (dash == std::string_view::npos || !bus) return std::nullopt;

  DeviceName name{*bus, {}};
  for (std::size_t dot = dash; dot != std::string_view::npos;) {
    const std::size_t begin = dot + 1;
    dot = text.find('.', begin);
    const auto port = ParseNumber(text.substr(begin, dot - begin), kMostPorts);
    if (!port || *port == 0) return std::nullopt;
    name.ports.push_back(*port);
  }
  return name;
}

}  // namespace kernel
