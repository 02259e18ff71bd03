// A source file as the checks on the tree look at it: its text, its text with the comments blanked out, and
// the files that a folder holds.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace usbinfo_test {

/// The C++ files below `root`/`folder`, as paths relative to `root`, in order; none when there is no such
/// folder.
std::vector<std::string> SourceFiles(const std::filesystem::path& root, const std::string& folder);

/// The file's text; fails the test when it cannot be read.
std::string ReadSource(const std::filesystem::path& file);

/// `source` with each comment replaced by one blank; line ends stay.
std::string WithoutComments(const std::string& source);

std::vector<std::string> Lines(const std::string& text);

}  // namespace usbinfo_test
