#include "cli/collect/SystemName.h"

#include <filesystem>
#include <vector>

namespace cli {

namespace fs = std::filesystem;

namespace {

bool IsKernelsOwn(const fs::path& path) {
  return path == "/proc/bus/usb/devices" || path == "/sys/kernel/debug/usb/devices";
}

/// /dev/stdin, /dev/fd/3, /dev/sda; /proc/self/fd/3.
bool IsDeviceOrDescriptor(const fs::path& path) {
  const std::vector<fs::path> parts(path.begin(), path.end());
  if (parts.size() < 3) return false;
  if (parts[1] == "dev") return parts[2] != "shm";
  constexpr std::size_t kDescriptorParts = 5;
  return parts[1] == "proc" && parts.size() == kDescriptorParts && parts[3] == "fd";
}

std::string WithoutSuffix(const fs::path& file) {
  const fs::path suffix = file.extension();
  if (suffix == ".txt" || suffix == ".list" || suffix == ".log") return file.stem();
  return file;
}

}  // namespace

std::optional<std::string> SystemNameOfList(const std::string& path) {
  if (path == "-") return std::nullopt;
  const fs::path normal = fs::path(path).lexically_normal();
  if (normal.is_absolute() && IsDeviceOrDescriptor(normal)) return std::nullopt;
  if (IsKernelsOwn(normal)) return std::string();
  return WithoutSuffix(normal.filename());
}

}  // namespace cli
