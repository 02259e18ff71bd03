#include "tests/faults/AllScenarios.h"

#include "tests/support/AllClasses.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

void Furnish(FakeOperatingSystem& machine, const Scenario& scenario) {
  if (scenario.HasProcFile(false)) machine.files[kProcDeviceFile] = scenario.deviceList;
  if (scenario.HasDebugfsFile()) machine.files[kDebugfsDeviceFile] = scenario.deviceList;
  machine.outputs[kListCommand] = scenario.CommandOutput();
  machine.onCall = [&machine, scenario](const std::string& call) {
    const bool mounts = call == std::string("system ") + kMountCommand;
    if (mounts && scenario.HasProcFile(true)) machine.files[kProcDeviceFile] = scenario.deviceList;
  };
}

namespace {

/// A hub, a device and a hub below it, and a device at the root, for which the host has no hub name; with
/// texts too long for a string's internal buffer.
std::string ListOfLongTexts() {
  const std::string start = "T:  Bus=01 of the many that a machine of this size may have Lev=";
  const std::string identity =
      "D:  Ver= 2.00 Cls=ef(miscellaneous) Sub=02 Prot=01 MxPS=64 #Cfgs=  1 and no more than that\n"
      "P:  Vendor=046d of some place ProdID=c077 of some place Rev=72.00\n";
  const std::string hub = "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n";
  const std::string below =
      " and well below the root Prnt=01 of the whole row Port=01 to the left Cnt=01 Dev#=  ";
  const std::string speed = " of a row Spd=12 Mbit each second MxCh= ";
  std::string list = start + "00 Prnt=00 Port=00 Cnt=00 Dev#=  1" + speed + "2 sockets\n" + identity;
  list += "S:  Product=A hub whose name is longer than most\n" + hub + "\n";
  list += start + "01" + below + "2" + speed + "0\n" + identity + "\n";
  list += start + "01" + below + "3" + speed + "1 socket\n" + identity + hub + "\n";
  return list + start + "00 and well above the others Prnt=00 Port=00 Cnt=00 Dev#=  4" + speed + "0\n" +
         identity;
}

}  // namespace

std::vector<Scenario> AllScenarios() {
  std::vector<Scenario> scenarios;
  for (const std::string& path : CapturePaths()) {
    scenarios.push_back({TestNameOf(path), ReadFile(path), ListPlace::kProcFile, kAllClasses});
  }
  const std::string small = ReadFile(TEST_DATA_DIR "/captures/kerneldoc-acm-2configs-indent2.txt");
  scenarios.push_back({"InDebugfs", small, ListPlace::kDebugfs, kAllClasses});
  scenarios.push_back({"Mountable", small, ListPlace::kMountable, kAllClasses});
  scenarios.push_back({"FromTheCommand", small, ListPlace::kCommand, kAllClasses});
  scenarios.push_back({"Nowhere", small, ListPlace::kNowhere, kAllClasses});
  scenarios.push_back({"NoCommand", small, ListPlace::kNoCommand, kAllClasses});
  const std::vector<std::string> oddRequest = {"KALDO_USBControllerHasHub", "KALDO_USBPort", "KALDO_USBHub",
                                               "KALDO_USBPort", "KALDO_USBPortOnHub"};
  scenarios.push_back({"LongTexts", ListOfLongTexts(), ListPlace::kProcFile, kAllClasses});
  scenarios.push_back({"OddRequest", small, ListPlace::kProcFile, oddRequest});
  return scenarios;
}

}  // namespace usbinfo_test
