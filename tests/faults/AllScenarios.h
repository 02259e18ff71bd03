// The runs in which everything fails once, and the machine for each.
#pragma once

#include <vector>

#include "tests/model/Scenario.h"
#include "tests/support/FakeOperatingSystem.h"

namespace usbinfo_test {

/// Every capture in /proc's place, the whole request; and one small list in every other place.
std::vector<Scenario> AllScenarios();

/// Gives `machine` the files and commands of `scenario`.
void Furnish(FakeOperatingSystem& machine, const Scenario& scenario);

}  // namespace usbinfo_test
