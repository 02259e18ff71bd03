// Texts that are not the command's own, made fit for where they go. A USB device chooses its strings, so any
// byte may stand in one. What people do not see, or are misled by, is called unprintable here; Unprintable.h
// lists it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/text/Utf8.h"

namespace cli {

/// Whether the locale's characters are encoded in UTF-8; in another, some bytes of UTF-8 are control
/// characters.
bool IsLocaleUtf8();

/// From now on, the character set is that of the environment's locale. It is loaded only when it is asked
/// for, since that takes time, and formats for programs do without.
void UseCharacterSetOfEnvironment();

/// `text` with ASCII letters in lower case, whatever the locale is.
std::string ToLower(std::string_view text);

/// `text` on one line for people: backslashes doubled, newlines as `\n`, and the bytes of every other
/// unprintable character as `\xHH`. Tabs and letters stay; where the locale is not one of UTF-8, only those
/// of ASCII do.
std::string EscapeForTerminal(std::string_view text);

/// `text` on one line of a document in UTF-8, whatever the locale is: as EscapeForTerminal makes it, tabs as
/// `\x09`, so that texts that differ look different.
std::string EscapeForDocument(std::string_view text);

/// `text` in double quotes, to be recognised as a whole wherever it stands on a terminal: as
/// EscapeForTerminal makes it, tabs as `\t` and quotes as `\"`.
std::string QuoteForTerminal(std::string_view text);

/// The same in UTF-8, whatever the locale is, for a text that is kept.
std::string QuoteForDocument(std::string_view text);

/// A text that EscapeForDocument or QuoteForDocument made, for the terminal: where the locale is not one of
/// UTF-8, the bytes of each character beyond ASCII as `\xHH`, as the functions for terminals write them.
std::string InCharacterSetOfLocale(std::string_view text);

/// `text` as the inside of a string of MOF: quotes and backslashes with a backslash before them, tabs and
/// newlines as `\t` and `\n`, every other unprintable character as `\x` with four digits, two of these
/// (surrogates) beyond U+FFFF; bytes that are not UTF-8 as U+FFFD.
std::string EscapeForMof(std::string_view text);

/// The parts of `text` between its commas; none of an empty text.
std::vector<std::string> SplitAtCommas(const std::string& text);

/// Appends `text` unless it is there.
void AddOnce(std::string text, std::vector<std::string>& texts);

}  // namespace cli
