// UTF-8 by the ranges of the Unicode standard, written without the libraries that the formats use, so that
// what those make of broken bytes can be held against it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace usbinfo_test {

/// `text` with U+FFFD for each longest piece that begins a character but does not end it, and for each byte
/// that begins none.
std::string ReplaceBrokenUtf8(const std::string& text);

/// `text` as documents for people show it: in addition U+FFFD for each control character, each mark that
/// turns the reading direction or is not seen, marks that pile up, and what XML has no character for.
std::string AsShown(const std::string& text);

/// Calls `take` with each character of `text`; throws BrokenInvariant when it is no UTF-8.
void ForEachCharacter(const std::string& text, const std::function<void(std::uint32_t character)>& take);

/// Throws BrokenInvariant when `text` is no UTF-8 or holds something that a terminal acts on, that turns
/// the reading direction or that is not seen; newlines may stand in it, and tabs if `tabs` says so.
void RequireFitForTerminal(const std::string& text, bool tabs);

/// The same, and ASCII throughout where the locale's character set is: U+FFFD is spelled there, too.
void RequireFitForCharacterSet(const std::string& text);

}  // namespace usbinfo_test
