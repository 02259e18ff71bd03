// Texts of documents as they stand in the store's columns.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace store {

/// The longest text that a column for searching holds, in bytes; longer ones would not fit into an index.
inline constexpr std::size_t kLongestColumnText = 512;

/// `text`, which is UTF-8, cut to that length between two characters, with U+FFFD for zero bytes, which
/// PostgreSQL does not store.
std::string ColumnText(std::string_view text);

/// The same; nothing for an empty text.
std::optional<std::string> OptionalColumnText(std::string_view text);

}  // namespace store
