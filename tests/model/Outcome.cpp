#include "tests/model/Outcome.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/AllClasses.h"

namespace usbinfo_test {

namespace {

/// "`what` N: actual, expected" for the first element that differs; empty when none does.
template <typename Item>
std::string FirstDifference(const std::string& what, const std::vector<Item>& actual,
                            const std::vector<Item>& expected) {
  const auto show = [](const std::vector<Item>& items, std::size_t index) {
    return index < items.size() ? ::testing::PrintToString(items[index]) : "none";
  };
  const std::size_t common = std::min(actual.size(), expected.size());
  std::size_t index = 0;
  while (index < common && actual[index] == expected[index]) ++index;
  if (index == actual.size() && index == expected.size()) return std::string();
  return what + " " + std::to_string(index) + ": " + show(actual, index) + ", expected " +
         show(expected, index) + "\n";
}

}  // namespace

std::vector<Properties> Outcome::InstancesOf(const std::string& className) const {
  const auto found = instances.find(className);
  return found == instances.end() ? std::vector<Properties>() : found->second;
}

bool Outcome::operator==(const Outcome& other) const {
  return leaving == other.leaving && trace == other.trace && log == other.log &&
         machineCalls == other.machineCalls && instances == other.instances;
}

std::string Difference(const Outcome& actual, const Outcome& expected) {
  std::string text;
  if (actual.leaving != expected.leaving) {
    text += actual.leaving + " left the request, expected " + expected.leaving + "\n";
  }
  text += FirstDifference("log line", actual.log, expected.log);
  text += FirstDifference("question to the machine", actual.machineCalls, expected.machineCalls);
  for (const std::string& className : kAllClasses) {
    text += FirstDifference(className, actual.InstancesOf(className), expected.InstancesOf(className));
  }
  text += FirstDifference("call", actual.trace.Calls(), expected.trace.Calls());
  if (text.empty() && actual != expected) text = "the calls differ\n";
  return text;
}

const char* NameOf(FaultKind kind) {
  switch (kind) {
    case FaultKind::kHostException:
      return "a host exception";
    case FaultKind::kStandardException:
      return "a standard exception";
    case FaultKind::kForeignException:
      return "a foreign exception";
  }
  return "";
}

}  // namespace usbinfo_test
