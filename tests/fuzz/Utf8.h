// UTF-8 by the ranges of the Unicode standard, and what is not seen by the C library's widths, written
// without the code that the formats use, so that what that makes of any bytes can be held against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace usbinfo_test {

/// `text` with U+FFFD for each longest piece that begins a character but does not end it, and for each byte
/// that begins none.
std::string ReplaceBrokenUtf8(const std::string& text);

/// `text` as documents for people show it: `\\` for a backslash, `\n` for a newline, and `\xHH` for each byte
/// of what is no UTF-8, of other control characters, of characters that are not seen or that are none, and of
/// combining marks that follow four others.
std::string AsShown(const std::string& text);

/// Calls `take` with each character of `text`; throws BrokenInvariant when it is not UTF-8.
void ForEachCharacter(const std::string& text, const std::function<void(std::uint32_t character)>& take);

/// Throws BrokenInvariant when `text` is no UTF-8 or holds something that a terminal acts on, that is not
/// seen or that turns the reading direction; newlines may stand in it, and tabs if `tabs` says so.
void RequireFitForTerminal(const std::string& text, bool tabs);

/// The same for a table of so many columns, without tabs: in addition each line is printable in the locale
/// and no wider than that many of the widest cells, 256 and a blank each.
void RequireFitForTable(const std::string& text, std::size_t columns);

}  // namespace usbinfo_test
