#include "tests/model/CallTrace.h"

#include <functional>
#include <string_view>

namespace usbinfo_test {

void CallTrace::Add(standin::HostOperation operation, const std::string& subject) {
  constexpr std::uint64_t kOddFactor = 0x9E3779B97F4A7C15;
  ++fCount;
  fDigest = (fDigest + static_cast<std::uint64_t>(operation) + 1) * kOddFactor;
  fDigest = (fDigest ^ std::hash<std::string_view>()(subject)) * kOddFactor;
  if (fKeepsCalls) fCalls.push_back(std::to_string(static_cast<int>(operation)) + " " + subject);
}

}  // namespace usbinfo_test
