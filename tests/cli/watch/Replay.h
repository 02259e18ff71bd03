// What a reader of the watch's lines knows of a machine: the lines, applied to the baseline one by one.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace usbinfo_test {

/// The hubs and devices by the kernel's names of their places, each with its class, model and serial number.
using DevicesByPlace = std::map<std::string, std::string>;

/// Those of a JSON inventory in which the kernel's names are known.
DevicesByPlace DevicesOf(const nlohmann::json& inventory);

/// Applies a difference of the schema "usbinfo.diff/2". What is below a hub that moved moves with it, unless
/// the difference says otherwise. Fails the test where the difference does not fit what is there.
DevicesByPlace Apply(const nlohmann::json& difference, const DevicesByPlace& before);

}  // namespace usbinfo_test
