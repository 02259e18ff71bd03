#include "usbfs/LineParser.h"

#include <algorithm>

std::string ToLowerPosix(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::string LineParser::getString(std::string line, std::string key, std::string terminator) const {
  const std::string lower = ToLowerPosix(line);
  const std::size_t keyAt = lower.find(key);
  if (keyAt == std::string::npos) return std::string();
  const std::size_t valueAt = keyAt + key.length();
  if (terminator == "\n") return line.substr(valueAt);
  const std::size_t end = lower.find(terminator, keyAt);
  if (end == std::string::npos) return std::string();
  return line.substr(valueAt, end - valueAt);
}
