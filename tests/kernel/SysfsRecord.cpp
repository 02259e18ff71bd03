#include "tests/kernel/SysfsRecord.h"

#include <array>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

namespace usbinfo_test {
namespace fs = std::filesystem;
namespace {

const std::set<std::string> kFiles = {"authorized",
                                      "bAlternateSetting",
                                      "bConfigurationValue",
                                      "connect_type",
                                      "descriptors",
                                      "devnum",
                                      "manufacturer",
                                      "maxchild",
                                      "product",
                                      "quirks",
                                      "serial",
                                      "speed"};
constexpr const char* kArrow = " -> ";
const std::set<std::string> kLinks = {"driver", "peer", "port"};

std::string Contents(const fs::path& file) {
  std::ifstream input(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), {}};
}

class Recorder {
 public:
  explicit Recorder(fs::path sys) : fSys(std::move(sys)) {}

  void AddFolder(const fs::path& folder);
  void AddLink(const fs::path& link) { fRecord[Name(link)] = {true, fs::read_symlink(link)}; }
  SysfsRecord Result() && { return std::move(fRecord); }

 private:
  std::string Name(const fs::path& path) const { return path.lexically_relative(fSys); }

  fs::path fSys;
  SysfsRecord fRecord;
};

/// A device, an interface or a port; others have files of the same names.
bool IsUsb(const fs::path& folder) {
  return fs::exists(folder / "devnum") || fs::exists(folder / "bInterfaceNumber") ||
         fs::exists(folder / "connect_type");
}

void Recorder::AddFolder(const fs::path& folder) {
  const bool isUsb = IsUsb(folder);
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename();
    if (entry.is_symlink()) {
      if (isUsb && kLinks.count(name) != 0) AddLink(entry.path());
    } else if (entry.is_directory()) {
      AddFolder(entry.path());
    } else if (isUsb && kFiles.count(name) != 0) {
      fRecord[Name(entry.path())] = {false, Contents(entry.path())};
    } else if (name == "uevent") {
      const std::string text = Contents(entry.path());
      if (text.find("DEVNAME=") != std::string::npos) fRecord[Name(entry.path())] = {false, text};
    }
  }
}

bool IsOn(const std::string& folder, const std::string& controller) {
  return controller.empty() || folder.find("/" + controller + "/") != std::string::npos;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\n') {
      quoted += "\\n";
    } else if (byte < ' ' || byte > '~' || character == '"' || character == '\\') {
      std::array<char, 8> code;
      std::snprintf(code.data(), code.size(), "\\x%02x", byte);
      quoted += code.data();
    } else {
      quoted += character;
    }
  }
  return quoted + '"';
}

std::string Unquoted(const std::string& quoted) {
  std::string text;
  for (std::size_t at = 1; at + 1 < quoted.size(); ++at) {
    if (quoted[at] != '\\') {
      text += quoted[at];
    } else if (quoted.at(++at) == 'n') {
      text += '\n';
    } else {
      text += static_cast<char>(std::stoi(quoted.substr(at + 1, 2), nullptr, 16));
      at += 2;
    }
  }
  return text;
}

}  // namespace

SysfsRecord RecordSysfs(const fs::path& sys, const std::string& controller) {
  Recorder recorder(sys);
  for (const auto& entry : fs::directory_iterator(sys / "bus/usb/devices")) {
    const std::string name = entry.path().filename();
    const std::string target = fs::canonical(entry.path());
    const bool isInterface = name.find(':') != std::string::npos;
    if (isInterface || !IsOn(target, controller)) continue;
    recorder.AddLink(entry.path());
    if (name.rfind("usb", 0) == 0) recorder.AddFolder(target);
  }
  return std::move(recorder).Result();
}

std::string ToText(const SysfsRecord& record) {
  std::string text;
  std::string folder;
  for (const auto& [path, file] : record) {
    const std::size_t slash = path.rfind('/');
    if (path.substr(0, slash) != folder) text += (folder = path.substr(0, slash)) + "\n";
    text += "  " + path.substr(slash + 1) + (file.isLink ? kArrow : " ") + Quoted(file.text) + "\n";
  }
  return text;
}

SysfsRecord FromText(const std::string& text) {
  SysfsRecord record;
  std::istringstream lines(text);
  std::string folder;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("  ")) {
      folder = line;
      continue;
    }
    const std::size_t quote = line.find(" \"");
    if (quote == std::string::npos) throw std::invalid_argument("no line of a record: " + line);
    const std::size_t arrow = line.find(kArrow);
    const bool isLink = arrow < quote;
    const std::string name = line.substr(2, std::min(arrow, quote) - 2);
    record[folder + "/" + name] = {isLink, Unquoted(line.substr(quote + 1))};
  }
  return record;
}

void Unpack(const SysfsRecord& record, const fs::path& sys) {
  for (const auto& [path, file] : record) {
    const fs::path target = sys / path;
    fs::create_directories(target.parent_path());
    if (file.isLink) {
      fs::create_symlink(file.text, target);
    } else {
      std::ofstream(target, std::ios::binary) << file.text;
    }
  }
}

}  // namespace usbinfo_test
