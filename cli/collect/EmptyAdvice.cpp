#include "cli/collect/EmptyAdvice.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace cli {

namespace {

constexpr const char* kDebugfsList = "/sys/kernel/debug/usb/devices";

MachineFacts::DebugfsList LookAtDebugfs() {
  if (::access(kDebugfsList, R_OK) == 0) return MachineFacts::DebugfsList::kReadable;
  return errno == EACCES ? MachineFacts::DebugfsList::kForbidden : MachineFacts::DebugfsList::kMissing;
}

bool IsInPath(const std::string& command) {
  const char* const path = std::getenv("PATH");
  // The colon ends the last folder. An empty folder means the current one.
  std::istringstream folders(std::string(path == nullptr ? "/usr/bin:/bin" : path) + ":");
  std::error_code error;
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (folder.empty()) folder = ".";
    folder.append("/").append(command);
    if (std::filesystem::is_regular_file(folder, error) && ::access(folder.c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace

MachineFacts MachineFacts::OfThisMachine() {
  std::error_code error;
  return {::access("/sys/bus/usb", F_OK) == 0, LookAtDebugfs(), IsInPath("usb-devices"),
          std::filesystem::is_empty("/sys/bus/usb/devices", error) && !error};
}

std::string AdviseOnEmptyMachine(const MachineFacts& facts) {
  return "no USB device found: " + ReasonForNoList(facts);
}

std::string ReasonForNoList(const MachineFacts& facts) {
  const std::string list = kDebugfsList;
  if (!facts.hasUsb) {
    return "this machine has no USB (/sys/bus/usb is missing); show a saved list with --devices FILE";
  }
  if (facts.hasNoDevices) return "/sys/bus/usb/devices has none; is a host controller's driver loaded?";
  if (facts.debugfsList == MachineFacts::DebugfsList::kReadable) {
    return list + " names none; is a host controller's driver loaded?";
  }
  if (facts.hasListCommand) return "usb-devices prints none; is a host controller's driver loaded?";
  if (facts.debugfsList == MachineFacts::DebugfsList::kForbidden) {
    return "no permission to read " + list +
           ", and usb-devices is not installed; run as root, or install the package usbutils";
  }
  return list + " is missing, and usb-devices is not installed; mount debugfs with " +
         "\"mount -t debugfs none /sys/kernel/debug\", or install the package usbutils";
}

}  // namespace cli
