// The outer form of a source file: it opens with a comment that says what it is for, and a header is included
// once.
#pragma once

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "tests/architecture/SourceText.h"

namespace usbinfo_test {

/// True when the first line is a comment that says something.
inline bool OpensWithComment(const std::string& source) {
  return std::regex_search(source, std::regex("^(//|/\\*)[^\n]*[A-Za-z]"));
}

/// True when the text, comments aside, holds the pragma in a line of its own.
inline bool HasPragmaOnce(const std::string& source) {
  const std::vector<std::string> lines = Lines(WithoutComments(source));
  return std::find(lines.begin(), lines.end(), "#pragma once") != lines.end();
}

/// The files of `folder` that lack either, as "FILE: WHY".
inline std::vector<std::string> BadlyFormedFiles(const std::filesystem::path& root,
                                                 const std::string& folder) {
  std::vector<std::string> bad;
  for (const std::string& file : SourceFiles(root, folder)) {
    const std::string source = ReadSource(root / file);
    if (!OpensWithComment(source)) bad.push_back(file + ": does not open with a comment");
    const bool isHeader = std::filesystem::path(file).extension() != ".cpp";
    if (isHeader && !HasPragmaOnce(source)) bad.push_back(file + ": lacks #pragma once");
  }
  return bad;
}

}  // namespace usbinfo_test
