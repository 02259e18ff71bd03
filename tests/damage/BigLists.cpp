#include "tests/damage/BigLists.h"

#include <fmt/format.h>

namespace usbinfo_test {

namespace {

std::string Device(std::size_t bus, std::size_t level, std::size_t parent, std::size_t port,
                   std::size_t number, std::size_t ports) {
  const char* const code = ports == 0 ? "03(HID  )" : "09(hub  )";
  return fmt::format(
      "T:  Bus={:02} Lev={:02} Prnt={:02} Port={:02} Cnt=01 Dev#={:3} Spd=480  MxCh={:2}\n"
      "D:  Ver= 2.00 Cls={} Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
      "P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
      "S:  Product=Device {}\n"
      "I:* If#= 0 Alt= 0 #EPs= 1 Cls={} Sub=00 Prot=00 Driver=any\n\n",
      bus, level, parent, port, number, ports, code, number, code);
}

}  // namespace

std::string DeviceOnNoHub(std::size_t number) {
  return Device(1, 1, 1, 0, number, 0);
}

std::string DevicesOnNoHub(std::size_t count) {
  std::string list;
  for (std::size_t number = 0; number < count; ++number) list += DeviceOnNoHub(number + 2);
  return list;
}

std::string RootHub(std::size_t ports) {
  return Device(1, 0, 0, 0, 1, ports);
}

std::string FullBuses(std::size_t buses) {
  constexpr std::size_t kHubs = 18;
  constexpr std::size_t kPorts = 6;
  std::string list;
  for (std::size_t bus = 1; bus <= buses; ++bus) {
    std::size_t next = kHubs + 2;
    list += Device(bus, 0, 0, 0, 1, kHubs);
    for (std::size_t hub = 0; hub < kHubs; ++hub) {
      list += Device(bus, 1, 1, hub, hub + 2, kPorts);
      for (std::size_t port = 0; port < kPorts; ++port) list += Device(bus, 2, hub + 2, port, next++, 0);
    }
  }
  return list;
}

}  // namespace usbinfo_test
