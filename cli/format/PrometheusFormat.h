// The inventory as metrics, for the textfile collector of Prometheus' node exporter.
#pragma once

#include <cstddef>
#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// More devices have no usbinfo_device_info. No machine has as many.
inline constexpr std::size_t kMostDeviceSeries = 1000;

/// Gauges: how many devices there are of each kind, how many sockets in each state, how many places in the
/// list a device may have forged, when that was, and a series of value 1 per device. The series of kinds and
/// states are always the same; no two devices have the same place. What the inventory does not say, such as
/// the time of a list from a file, has no metric. Throws UserError for a part of an inventory, which would
/// count as the whole.
std::string RenderPrometheus(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
