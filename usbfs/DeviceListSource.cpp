#include "usbfs/DeviceListSource.h"

#include <cstdlib>

#include "host/TOSSpecific.h"
#include "host/TQSVException.h"
#include "plugin/Vocabulary.h"

using NKESTA20::TOSSpecific;
using NKESTA20::TQSVException;

namespace {

constexpr const char* kDebugfsDeviceFile = "/sys/kernel/debug/usb/devices";
constexpr const char* kMountUsbfs = "mount -t usbfs usbfs /proc/bus/usb > /dev/null 2>&1";
constexpr const char* kUnmountUsbfs = "umount usbfs > /dev/null 2>&1";
constexpr const char* kListCommand = "usb-devices";
constexpr int kListCommandSeconds = 300;

/// Runs a mount command. Its exit status is ignored: the mount has worked when the file is there.
void RunIgnoringStatus(const char* command) {
  // The commands are constants and the shell's search path is the host's own.
  [[maybe_unused]] const int status = std::system(command);  // NOLINT(cert-env33-c)
}

}  // namespace

std::string DeviceListSource::Read() const {
  const std::string text = ReadFiles();
  return text.empty() ? RunCommand() : text;
}

std::string DeviceListSource::ReadFiles() const {
  std::string text;
  try {
    CaptureListing(text);
  } catch (TQSVException&) {
    fLog.WriteStatus("Could not read usb device file ");
  }
  return text;
}

void DeviceListSource::CaptureListing(std::string& text) const {
  if (TOSSpecific::FileExists(kUsbDeviceFile)) {
    text = TOSSpecific::CaptureFile(kUsbDeviceFile);
    return;
  }
  if (TOSSpecific::FileExists(kDebugfsDeviceFile)) {
    text = TOSSpecific::CaptureFile(kDebugfsDeviceFile);
    return;
  }
  RunIgnoringStatus(kMountUsbfs);
  if (!TOSSpecific::FileExists(kUsbDeviceFile)) {
    fLog.WriteStatus("Could not open usb device file ");
    return;
  }
  text = TOSSpecific::CaptureFile(kUsbDeviceFile);
  RunIgnoringStatus(kUnmountUsbfs);
}

std::string DeviceListSource::RunCommand() const {
  std::string output = TOSSpecific::SpawnProcess(kListCommand, kListCommandSeconds);
  fLog.WriteDebug(output);
  if (output.empty() || output.find("command-not-found") != std::string::npos) {
    fLog.WriteStatus("USB device file is empty");
    return std::string();
  }
  return output;
}
