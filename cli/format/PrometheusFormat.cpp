#include "cli/format/PrometheusFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "cli/format/DeviceColumns.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/Kinds.h"
#include "cli/model/SocketText.h"
#include "cli/text/MetricWriter.h"
#include "cli/text/UserError.h"
#include "cli/text/UtcTime.h"

namespace cli {

namespace {

using DeviceNodes = std::vector<const SocketNode*>;

constexpr const char* kUnknownKind = "unknown";

void RequireWhole(const Inventory& inventory) {
  const std::optional<Origin>& origin = inventory.GetOrigin();
  if (!inventory.IsPartial() && !(origin && origin->selection)) return;
  throw UserError(
      "the inventory is a part of a machine's, whose counts would pass for those of the whole; save it "
      "without a selection, or use another format");
}

void WriteKindCounts(const DeviceNodes& devices, MetricWriter& metrics) {
  std::map<std::string, std::int64_t> counts;
  for (const SocketNode* const device : devices) {
    const std::vector<std::string> kinds = KindsOf(*device);
    for (const std::string& kind : kinds) ++counts[kind];
    if (kinds.empty()) ++counts[kUnknownKind];
  }
  metrics.BeginGauge("usbinfo_devices",
                     "Devices and hubs, without root hubs; one of several kinds counts for each.");
  for (const std::string& kind : AllKinds()) metrics.Sample({{"kind", kind}}, counts[kind]);
  metrics.Sample({{"kind", kUnknownKind}}, counts[kUnknownKind]);
}

void WriteSocketCounts(const Sockets& sockets, MetricWriter& metrics) {
  const SocketCounts counts = sockets.Counts();
  const std::size_t used = counts.sockets - counts.free - counts.notUsed - counts.unknown;
  metrics.BeginGauge("usbinfo_sockets",
                     "Sockets in each state; ports, where it is not known which of them share a socket.");
  const auto write = [&metrics](SocketState state, std::size_t count) {
    metrics.Sample({{"state", NameOf(state)}}, static_cast<std::int64_t>(count));
  };
  write(SocketState::kFree, counts.free);
  write(SocketState::kUsed, used);
  write(SocketState::kNotUsed, counts.notUsed);
  write(SocketState::kUnknown, counts.unknown);
}

/// The text of the place, with a number behind it if it is taken, since a list may name a place twice.
std::string PlaceLabelOf(const SocketNode& device, std::set<std::string>& taken) {
  const std::string place = LabelTextOf(PlaceOf(device, true));
  std::string label = place;
  for (std::size_t number = 2; !taken.insert(label).second; ++number) {
    label = fmt::format("{} ({})", place, number);
  }
  return label;
}

std::vector<MetricLabel> LabelsOf(const SocketNode& device, std::string place, bool hasSerial) {
  const Item& item = device.GetItem();
  const std::string kind = KindOf(device);
  std::vector<MetricLabel> labels = {{"place", std::move(place)},
                                     {"vid", fmt::format("{:04x}", item.Number(PropertyId::kVendorID))},
                                     {"pid", fmt::format("{:04x}", item.Number(PropertyId::kUSBDeviceID))},
                                     {"kind", kind.empty() ? kUnknownKind : kind},
                                     {"vendor", LabelTextOf(ManufacturerOf(device))},
                                     {"product", LabelTextOf(ProductOf(device))}};
  if (hasSerial) labels.push_back({"serial", LabelTextOf(SerialOf(device))});
  return labels;
}

void WriteDevices(const DeviceNodes& devices, bool hasSerials, MetricWriter& metrics) {
  const std::size_t shown = std::min(devices.size(), kMostDeviceSeries);
  std::set<std::string> places;
  metrics.BeginGauge("usbinfo_device_info", "A device or hub; the value is always 1.");
  for (std::size_t index = 0; index < shown; ++index) {
    const SocketNode& device = *devices[index];
    metrics.Sample(LabelsOf(device, PlaceLabelOf(device, places), hasSerials), 1);
  }
  metrics.BeginGauge("usbinfo_devices_omitted",
                     "Devices and hubs that are too many for usbinfo_device_info.");
  metrics.Sample({}, static_cast<std::int64_t>(devices.size() - shown));
}

void WriteOriginMetrics(const Origin& origin, MetricWriter& metrics) {
  metrics.BeginGauge("usbinfo_suspect", "Places in the device list that a device may have forged.");
  metrics.Sample({}, static_cast<std::int64_t>(origin.findings.size()));
  const std::optional<std::time_t> time = origin.collected ? ParseUtc(*origin.collected) : std::nullopt;
  if (!time) return;
  metrics.BeginGauge("usbinfo_collected_timestamp_seconds", "When the devices were read, in Unix time.");
  metrics.Sample({}, *time);
}

}  // namespace

std::string RenderPrometheus(const Inventory& inventory, const RenderOptions& options) {
  RequireWhole(inventory);
  const Sockets sockets(inventory);
  const DeviceNodes devices = DeviceRows(sockets, options);
  MetricWriter metrics;
  WriteKindCounts(devices, metrics);
  WriteSocketCounts(sockets, metrics);
  WriteDevices(devices, options.showsSerials, metrics);
  if (inventory.GetOrigin()) WriteOriginMetrics(*inventory.GetOrigin(), metrics);
  return metrics.Take();
}

}  // namespace cli
