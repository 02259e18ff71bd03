// Masking texts; see the header.
#include "cli/collect/MaskingSystem.h"

#include <algorithm>
#include <utility>

namespace cli {

namespace {

/// As the plug-in compares letters, whatever the locale.
std::string ToLower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

/// `value` without the blanks at its end.
std::string WithoutTrailingBlanks(const std::string& value) {
  return value.substr(0, value.find_last_not_of(" \t\r") + 1);
}

}  // namespace

std::string MaskSerials(const std::string& text, const SerialMask& mask) {
  const std::string key = "serialnumber=";
  const std::string lower = ToLower(text);
  std::string masked;
  std::size_t done = 0;
  for (std::size_t at = 0; (at = lower.find(key, done)) != std::string::npos;) {
    const std::size_t value = at + key.size();
    const std::size_t end = std::min(text.find('\n', value), text.size());
    const std::string serial = WithoutTrailingBlanks(text.substr(value, end - value));
    masked += text.substr(done, value - done);
    masked += serial.empty() ? text.substr(value, end - value) : mask.Mask(serial);
    done = end;
  }
  return masked + text.substr(done);
}

MaskingSystem::MaskingSystem(std::unique_ptr<standin::OperatingSystem> behind, SerialMask mask)
    : ForwardingSystem(std::move(behind)), fMask(std::move(mask)) {}

std::string MaskingSystem::CaptureFile(const std::string& path) {
  return MaskSerials(ForwardingSystem::CaptureFile(path), fMask);
}

std::string MaskingSystem::SpawnProcess(const std::string& command, int seconds) {
  return MaskSerials(ForwardingSystem::SpawnProcess(command, seconds), fMask);
}

}  // namespace cli
