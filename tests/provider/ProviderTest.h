// What the tests of the provider base share: the least a provider can be, a handle that switches its logging
// on, and matchers and printing for host values.
#pragma once

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "host/TPluginManagerProvider.h"
#include "host/TQSVException.h"
#include "provider/TUsb.h"
#include "standin/HostSeam.h"
#include "standin/ValueView.h"
#include "tests/support/HostMocks.h"
#include "tests/support/HostTest.h"

namespace NKESTA20 {

/// Keeps GoogleTest from converting a value to a number in order to print it, which may throw.
inline void PrintTo(const TCIMValue& value, std::ostream* out) {
  *out << "type " << standin::TypeOf(value) << " " << ::testing::PrintToString(standin::TextOf(value));
}

}  // namespace NKESTA20

namespace usbinfo_test {

/// A provider that records the class names it is asked for.
class PlainProvider : public TUsb {
 public:
  using TUsb::GetCIMInstances;
  using TUsb::TUsb;

  bool GetCIMInstances(std::string className) override {
    asked.push_back(className);
    return answer;
  }

  std::vector<std::string> asked;
  bool answer = false;
};

class ProviderTest : public HostTest {
 protected:
  using StrictClass = ::testing::StrictMock<MockClass>;
  using StrictInstance = ::testing::StrictMock<MockInstance>;

  /// Any failure of the host.
  static NKESTA20::TQSVException HostFailure() {
    return NKESTA20::TQSVException(NKESTA20::TQSVStatusCode(1));
  }

  NKESTA20::TPluginManagerProvider handle;
};

MATCHER_P2(IsValue, type, text, "") {
  return standin::TypeOf(arg) == type && standin::TextOf(arg) == text;
}

/// The host operations, of the stand-in's own, that happen while `action` runs.
template <typename Action>
std::vector<standin::HostOperation> OperationsDuring(Action action) {
  std::vector<standin::HostOperation> operations;
  standin::HostSeam::SetObserver(
      [&operations](const standin::HostCall& call) { operations.push_back(call.operation); });
  action();
  standin::HostSeam::SetObserver(nullptr);
  return operations;
}

}  // namespace usbinfo_test
