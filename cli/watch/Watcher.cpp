#include "cli/watch/Watcher.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "cli/diff/InventoryDiff.h"
#include "cli/text/Message.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

/// The earlier one of those that are set.
std::optional<Clock::Point> Earlier(std::optional<Clock::Point> left, std::optional<Clock::Point> right) {
  if (!left || !right) return left ? left : right;
  return std::min(*left, *right);
}

}  // namespace

Watcher::Watcher(Watched watched, WatchSettings settings, Inventory known)
    : fWatched(std::move(watched)), fSettings(std::move(settings)), fKnown(std::move(known)) {}

void Watcher::Compare(Inventory now) {
  const EventBatch batch = std::exchange(fBatch, EventBatch());
  const InventoryDifference difference = cli::Compare(fKnown, now, fSettings.ignored);
  WatchReport report;
  report.sequence = fReports + 1;
  report.time = fWatched.clock.Time();
  report.difference = &difference;
  report.cameAndWent = batch.CameAndWent(fKnown, now);
  report.hasLosses = batch.HasLosses();
  if (fWatched.audit != nullptr) report.refusals = fWatched.audit->Audit(now);
  if (!report.IsEmpty()) {
    ++fReports;
    fWatched.print(report);
  }
  fKnown = std::move(now);
}

bool Watcher::Follow() {
  std::optional<Clock::Point> end;
  if (fSettings.timeout) end = fWatched.clock.Now() + *fSettings.timeout;
  bool goesOn = true;
  while (goesOn && !IsCountReached()) {
    goesOn = AwaitLook(end);
    TakeBacklog();
    Look(goesOn);
  }
  return !fRetryAt;
}

bool Watcher::AwaitLook(std::optional<Clock::Point> end) {
  for (;;) {
    const Clock::Point now = fWatched.clock.Now();
    const std::optional<Clock::Point> look = NextLook();
    if (end && now >= *end) return false;
    if (look && now >= *look) return true;
    const Waking waking = fWatched.events.Wait(Earlier(look, end));
    if (waking.cause == Waking::Cause::kStop) return false;
    Take(waking);
  }
}

void Watcher::Take(const Waking& waking) {
  if (waking.cause == Waking::Cause::kEvent) fBatch.Take(waking.event, fWatched.clock.Now());
  if (waking.cause == Waking::Cause::kLoss) fBatch.TakeLoss(fWatched.clock.Now());
}

void Watcher::TakeBacklog() {
  // More than the kernel keeps; a flood that goes on must not put the look off.
  constexpr int kMostEvents = 1 << 16;
  for (int taken = 0; taken < kMostEvents; ++taken) {
    const std::optional<Waking> waking = fWatched.events.Receive();
    if (!waking) return;
    Take(*waking);
  }
}

std::optional<Clock::Point> Watcher::NextLook() const {
  return fRetryAt ? fRetryAt : fBatch.LookAt(fSettings.settle);
}

void Watcher::Look(bool isRepeated) {
  std::optional<Inventory> now;
  try {
    now = fWatched.collect();
  } catch (const UserError& error) {
    NoteFailure(error.what(), isRepeated);
    return;
  }
  fRetryAt.reset();
  fFailure.clear();
  Compare(std::move(*now));
}

void Watcher::NoteFailure(const std::string& message, bool isRepeated) {
  fRetryAt = fWatched.clock.Now() + kRetryAfter;
  if (isRepeated && message == fFailure) return;
  fFailure = message;
  PrintMessage(isRepeated ? fmt::format("{}; trying again every {} seconds", message, kRetryAfter.count())
                          : message);
}

}  // namespace cli
