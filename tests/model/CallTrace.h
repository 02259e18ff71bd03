// The host calls of one run, counted and condensed into one number: two runs with equal traces made the same
// calls about the same things in the same order. Keeps the calls themselves only when asked to, for runs that
// differ.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "standin/HostSeam.h"

namespace usbinfo_test {

class CallTrace {
 public:
  explicit CallTrace(bool keepsCalls = false) : fKeepsCalls(keepsCalls) {}

  void Add(standin::HostOperation operation, const std::string& subject);

  std::size_t Count() const { return fCount; }
  /// The calls as "operation number, subject"; empty unless they are kept.
  const std::vector<std::string>& Calls() const { return fCalls; }

  bool operator==(const CallTrace& other) const { return fCount == other.fCount && fDigest == other.fDigest; }

 private:
  bool fKeepsCalls;
  std::size_t fCount = 0;
  std::uint64_t fDigest = 0;
  std::vector<std::string> fCalls;
};

}  // namespace usbinfo_test
