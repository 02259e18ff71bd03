// Reads the metrics back.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws where `document` is not metrics that Prometheus takes, or they do not count the hubs, devices and
/// ports of `inventory` as a second reading does. The kernel does not say which of its ports share a socket.
void CheckPrometheus(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
