// The text of a document but for its time, by which a report that repeats the one before it is known without
// being parsed.
#pragma once

#include <optional>
#include <string>

#include "store/TimeText.h"

namespace store {

struct TimelessText {
  /// Of the text before the time and that after it.
  std::string hash;
  /// What stands between them.
  Seconds time;
};

/// Nothing where the text has not exactly one member "collected" with a time, written as
/// `usbinfo -j --compact` writes it. Whether this is the member of the origin, only parsing shows.
std::optional<TimelessText> WithoutTime(const std::string& text);

}  // namespace store
