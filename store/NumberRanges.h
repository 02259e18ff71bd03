// Lists of numbers as short texts: "1-17,25,19-24".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace store {

/// The numbers in their order; each run of numbers that ascend by one is a range.
std::string FormatRanges(const std::vector<std::int64_t>& numbers);

/// The list that FormatRanges gives `text` for; nothing for any other text.
std::optional<std::vector<std::int64_t>> ParseRanges(const std::string& text);

}  // namespace store
