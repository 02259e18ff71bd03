// How much room a text takes on a terminal, in columns, and how to make it fit. The characters and their
// widths are those of the locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

/// `text` with tabs and every other character that the locale does not know how to print as `\xHH`, a byte
/// each.
std::string EscapeUnprintable(std::string_view text);

/// The columns that `text` takes; it must hold nothing that is not printable.
std::size_t DisplayWidth(std::string_view text);

/// `text` if it takes at most `width` columns, which must be 1 or more; otherwise as much of its beginning as
/// leaves room for `mark`, one column wide, and the mark.
std::string CutToWidth(std::string_view text, std::size_t width, std::string_view mark);

}  // namespace cli
