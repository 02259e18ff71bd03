// Small device lists for tests that need an inventory but not a real machine's. Each is as short as it may be
// and still make what its comment says.
#pragma once

#include <string>

namespace usbinfo_test {

/// One root hub with one port and a mouse on it: one instance of each of the six classes.
inline const std::string kRootHubWithMouse =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=12  MxCh= 1\n"
    "D:  Ver= 1.10 Cls=09(hub  ) Sub=00 Prot=00 MxPS=64 #Cfgs=  1\n"
    "P:  Vendor=1d6b ProdID=0001 Rev= 6.01\n"
    "S:  Product=UHCI Host Controller\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n"
    "E:  Ad=81(I) Atr=03(Int.) MxPS=   2 Ivl=255ms\n"
    "\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=1.5 MxCh= 0\n"
    "D:  Ver= 1.10 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
    "P:  Vendor=046d ProdID=c00e Rev=11.10\n"
    "S:  Product=Mouse\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=02 Driver=usbhid\n"
    "E:  Ad=81(I) Atr=03(Int.) MxPS=   4 Ivl=10ms\n";

/// Two root hubs on different buses, with two ports and one, nothing plugged in.
inline const std::string kTwoRootHubs =
    "T:  Bus=07 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=12  MxCh= 2\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n"
    "E:  Ad=81(I) Atr=03(Int.) MxPS=   2 Ivl=255ms\n"
    "T:  Bus=08 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=12  MxCh= 1\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n"
    "E:  Ad=81(I) Atr=03(Int.) MxPS=   2 Ivl=255ms\n";

}  // namespace usbinfo_test
