#include "tests/kernel/RecordedMachine.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "kernel/SysfsReader.h"

namespace usbinfo_test {
namespace fs = std::filesystem;
namespace {

fs::path DataFile(const std::string& name) {
  return fs::path(TEST_DATA_DIR) / "sysfs" / name;
}

std::string WholeFile(const fs::path& file) {
  std::ifstream input(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), {}};
}

}  // namespace

std::vector<std::string> RecordedMachines() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(DataFile(""))) {
    if (entry.path().extension() == ".tree") names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

SysfsRecord ReadRecord(const std::string& machine) {
  return FromText(WholeFile(DataFile(machine + ".tree")));
}

std::string ReadKernelList(const std::string& machine) {
  return WholeFile(DataFile(machine + ".txt"));
}

SysfsRecord PartOf(const SysfsRecord& record, const std::string& controller) {
  SysfsRecord part;
  for (const auto& [path, file] : record) {
    const std::string& place = path.starts_with("bus/") ? file.text : path;
    if (place.find("/" + controller + "/") != std::string::npos) part[path] = file;
  }
  return part;
}

kernel::Topology UnpackedSysfs::Read() const {
  return kernel::ReadSysfs(Root());
}

}  // namespace usbinfo_test
