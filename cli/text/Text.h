// Texts that are not the command's own, made fit for where they go. A USB device chooses its strings, so any
// byte may stand in one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

/// `text` with every byte that is no part of valid UTF-8 replaced by U+FFFD, as the JSON export does it.
std::string ReplaceInvalidUtf8(const std::string& text);

/// The bytes that a character of valid UTF-8 takes, 1 to 4, from its first one.
std::size_t CharacterLength(char lead);

/// `text` on one line for people: backslashes doubled, newlines as `\n`, and every other control character,
/// direction mark and byte that is no UTF-8 as `\xHH`. Tabs and letters stay; where the locale is not one of
/// UTF-8, only those of ASCII do.
std::string EscapeForTerminal(const std::string& text);

/// `text` as the inside of a string of MOF: quotes and backslashes with a backslash before them, tabs and
/// newlines as
/// `\t` and `\n`, every other control character and direction mark as `\x` with four digits, bytes that are
/// no UTF-8 as U+FFFD.
std::string EscapeForMof(const std::string& text);

/// `text` with the marks that turn the reading direction replaced by U+FFFD, so that a name cannot rearrange
/// the line it stands in.
std::string ReplaceDirectionMarks(const std::string& text);

/// `text` on one line for documents that a person looks at: control characters, direction marks and what no
/// XML document may hold, bytes that are no UTF-8 among it, replaced by U+FFFD each.
std::string ReplaceUnprintable(const std::string& text);

/// The number of the control character or direction mark that begins at `at` of valid UTF-8; 0 where any
/// other character begins.
unsigned int ControlAt(const std::string& text, std::size_t at);

/// The parts of `text` between its commas; none of an empty text.
std::vector<std::string> SplitAtCommas(const std::string& text);

}  // namespace cli
