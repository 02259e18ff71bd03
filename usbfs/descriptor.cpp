#include "usbfs/descriptor.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

#include "provider/ValueConversion.h"

std::string descriptor::removeDecimalPoint(const char* text) const {
  const auto length = static_cast<std::uint32_t>(std::strlen(text));
  if (length == 0) return std::string();
  std::vector<char> kept;
  kept.reserve(std::size_t{length} + 1);
  std::copy_if(text, text + length, std::back_inserter(kept), [](char c) { return c != '.'; });
  kept.push_back('\0');
  return dataToString<char*>(kept.data());
}

void descriptor::Initialize(std::string line) {
  version = getString(line, "ver=", "cls");
  version = removeDecimalPoint(version.c_str());
  classCode = getString(line, "cls=", "sub");
  subClassCode = getString(line, "sub=", "prot");
  protocol = getString(line, "prot=", "mxps");
  configs = getString(line, "#cfgs=", "\n");
}
