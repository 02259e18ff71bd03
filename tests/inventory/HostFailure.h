// Making single host calls fail, with the host's own exception or with another one, and counting calls. The
// fixture of the stand-in host clears what is set here.
#pragma once

#include <exception>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "standin/HostSeam.h"
#include "standin/StatusCode.h"

namespace usbinfo_test {

/// An exception that is not the host's.
class AnotherError : public std::exception {};

using Failure = void (*)();

/// A kind of host call that is made to fail.
struct HostStep {
  standin::HostOperation operation;
  const char* subject;
};

inline std::ostream& operator<<(std::ostream& out, const HostStep& step) {
  return out << "operation " << static_cast<int>(step.operation) << " about \"" << step.subject << "\"";
}

/// Text "CIM_ERR_ACCESS_DENIED".
[[noreturn]] inline void ThrowHostError() {
  standin::Throw(standin::StatusCode::kAccessDenied);
}

[[noreturn]] inline void ThrowAnotherError() {
  throw AnotherError();
}

/// From now on every host call is counted per operation and subject, and a chosen one fails.
class HostCalls {
 public:
  static constexpr int kEvery = 0;

  /// Fails the `turn`-th call of `operation` about `subject`, counted from now; `subject` empty: about
  /// anything.
  static void Fail(standin::HostOperation operation, const std::string& subject, int turn, Failure fail) {
    const auto observe = [=, seen = 0](const standin::HostCall& call) mutable {
      if (call.operation != operation || (!subject.empty() && call.subject != subject)) return;
      ++seen;
      if (turn == kEvery || seen == turn) fail();
    };
    standin::HostSeam::SetObserver(observe);
  }

  HostCalls() {
    standin::HostSeam::SetObserver(
        [this](const standin::HostCall& call) { fCalls.emplace_back(call.operation, call.subject); });
  }
  HostCalls(const HostCalls&) = delete;
  HostCalls& operator=(const HostCalls&) = delete;
  ~HostCalls() { standin::HostSeam::SetObserver(nullptr); }

  /// How often `operation` was called about `subject`; empty: about anything.
  int Count(standin::HostOperation operation, const std::string& subject = std::string()) const {
    int count = 0;
    for (const auto& call : fCalls) {
      if (call.first == operation && (subject.empty() || call.second == subject)) ++count;
    }
    return count;
  }

  /// The subjects of the calls of the given operations, in order.
  std::vector<std::string> Subjects(const std::vector<standin::HostOperation>& operations) const {
    std::vector<std::string> subjects;
    for (const auto& call : fCalls) {
      for (const standin::HostOperation operation : operations) {
        if (call.first == operation) subjects.push_back(call.second);
      }
    }
    return subjects;
  }

 private:
  std::vector<std::pair<standin::HostOperation, std::string>> fCalls;
};

}  // namespace usbinfo_test
