// Lines of comma-separated values, for spreadsheets and scripts: RFC 4180, in UTF-8.
#pragma once

#include <string>
#include <vector>

namespace cli {

/// A line with its end. Any bytes may stand in the cells: they are escaped as in other documents; one whose
/// text begins with a character by which spreadsheets recognise formulas has an apostrophe before it.
std::string CsvLine(const std::vector<std::string>& cells);

}  // namespace cli
