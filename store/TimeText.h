// Points in time and durations: as numbers in the store, as texts in documents, options and output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace store {

/// Since 1970-01-01T00:00:00Z, or of a duration.
using Seconds = std::int64_t;

/// "2026-11-21T12:00:00Z", for the years 0 to 9999.
std::string FormatTime(Seconds time);
/// The time that FormatTime gives `text` for; nothing for any other text, such as one with a day that the
/// month lacks.
std::optional<Seconds> ParseTime(const std::string& text);

/// "90s", "30m", "12h", "2d", "8w": a whole number and a unit, at most a thousand years. Throws UsageError
/// for any other form.
Seconds ParseDuration(const std::string& text);

/// A point in time as options take it.
class Moment {
 public:
  /// "2026-03-15", which is the beginning of that day, "2026-03-15T12:00" or "2026-03-15 12:00:30", in UTC
  /// with a Z at the end or without; or a duration, which is that long ago. Throws UsageError for any other
  /// form.
  static Moment Parse(const std::string& text);

  Seconds At(Seconds now) const { return fIsAgo ? now - fSeconds : fSeconds; }

 private:
  Moment(Seconds seconds, bool isAgo) : fSeconds(seconds), fIsAgo(isAgo) {}

  Seconds fSeconds;
  bool fIsAgo;
};

}  // namespace store
