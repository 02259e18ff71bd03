// Which characters people do not see, or are misled by: one classification for everything that writes a
// device's strings.
#pragma once

#include "cli/text/Utf8.h"

namespace cli {

/// Looks at the characters of a text in their order, since some depend on what they follow.
class UnprintableFinder {
 public:
  /// True for bytes that are not UTF-8, for control characters, the Unicode line ends and code points that
  /// are no characters, and for
  ///
  /// * what is not seen by itself: Unicode's Default_Ignorable_Code_Point (zero-width characters, direction
  ///   marks, soft hyphens, fillers, tags) and other format controls. A variation selector may follow a
  ///   character from U+2000 on, where symbols, emoji and ideographs are;
  /// * combining marks (general categories Mn and Me, vowels and finals of Hangul) that follow four others.
  bool IsUnprintable(const Character& character);

 private:
  /// The character directly before this one, if a variation selector may follow it, otherwise 0.
  char32_t fBase = 0;
  /// How many combining marks are directly before this character.
  unsigned int fMarks = 0;
};

}  // namespace cli
