// A run of the real module on the stand-in host: load, Init, one request, DeInit, unload, with a fault put
// into one of its host calls or one of its memory allocations. Gives the outcome that the model's is held
// against.
#pragma once

#include <cstddef>
#include <optional>

#include "tests/model/Fault.h"
#include "tests/model/Outcome.h"
#include "tests/model/Scenario.h"

namespace usbinfo_test {

/// Runs `scenario` with that fault; only Fault::Moment::kInCall can be put into a call.
Outcome RunPlugin(const Scenario& scenario, const std::optional<Fault>& fault, bool keepsCalls = false);

struct AllocationRun {
  Outcome outcome;
  /// The host calls that the run had begun when the allocation failed; none when it made fewer allocations.
  std::optional<std::size_t> callsBefore;
};

/// Runs `scenario` with the allocation of that number, from 0, failing once. Counted are those of the
/// request: the plug-in's and the host's, not the test's own.
AllocationRun RunPluginShortOfMemory(const Scenario& scenario, std::size_t allocation,
                                     bool keepsCalls = false);

}  // namespace usbinfo_test
