// Device lists of any size, made for the tests that count what they cost.
#pragma once

#include <string>

namespace usbinfo_test {

/// A device below the root hub of bus 1, which the list need not hold.
std::string DeviceOnNoHub(std::size_t number);

/// `count` of those.
std::string DevicesOnNoHub(std::size_t count);

/// A root hub on bus 1 with `ports` ports and nothing on them.
std::string RootHub(std::size_t ports);

/// `buses` buses of 127 devices, the most that a bus can have: a root hub, 18 hubs of six ports on it, and a
/// device on each of their ports.
std::string FullBuses(std::size_t buses);

}  // namespace usbinfo_test
