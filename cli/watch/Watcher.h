// Follows a machine: looks at it anew whenever events have come and things have settled, and reports what
// differs from the look before.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/watch/Clock.h"
#include "cli/watch/EventBatch.h"
#include "cli/watch/PolicyAudit.h"
#include "cli/watch/UeventSource.h"
#include "cli/watch/WatchReport.h"

namespace cli {

/// What the watch works on.
struct Watched {
  UeventSource& events;
  const Clock& clock;
  /// Gives the machine's inventory. Throws UserError where it cannot be collected.
  std::function<Inventory()> collect;
  std::function<void(const WatchReport& report)> print;
  /// What each look is held against; null for nothing.
  PolicyAudit* audit = nullptr;
};

struct WatchSettings {
  /// Things have settled when no event has come for so long.
  std::chrono::milliseconds settle{500};
  /// The watch ends after so many reports, 1 or more.
  std::optional<std::uint64_t> count = std::nullopt;
  /// And after so long.
  std::optional<std::chrono::milliseconds> timeout = std::nullopt;
  /// Properties that are not compared, of ComparedProperties.
  std::vector<std::string> ignored = {};
};

class Watcher {
 public:
  /// How long after a look that failed the next one is taken.
  static constexpr std::chrono::seconds kRetryAfter{5};

  /// `known` is what the first look is compared with.
  Watcher(Watched watched, WatchSettings settings, Inventory known);

  /// Reports how `now` differs from what is known. From then on, `now` is known.
  void Compare(Inventory now);

  /// Looks and reports until the source says stop, the timeout has passed, or the number of reports is
  /// reached. There is a last look in the first two cases, so that nothing that happened before is missed.
  /// False where that one failed; the message of each failure is on standard error.
  bool Follow();

 private:
  bool IsCountReached() const { return fSettings.count && fReports >= *fSettings.count; }
  /// Takes events until it is time to look. False where the watch is to end.
  bool AwaitLook(std::optional<Clock::Point> end);
  std::optional<Clock::Point> NextLook() const;
  void Take(const Waking& waking);
  /// Takes the events that are already there, so that the look is compared with all that came before it.
  void TakeBacklog();
  /// `isRepeated` says that there will be another look if this one fails.
  void Look(bool isRepeated);
  void NoteFailure(const std::string& message, bool isRepeated);

  Watched fWatched;
  WatchSettings fSettings;
  Inventory fKnown;
  EventBatch fBatch;
  std::uint64_t fReports = 0;
  /// Where the last look failed: when to look again, and why it failed.
  std::optional<Clock::Point> fRetryAt;
  std::string fFailure;
};

}  // namespace cli
