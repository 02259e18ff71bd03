// Source files as text; see the header.
#include "tests/architecture/SourceText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace usbinfo_test {

namespace {

/// The end of the string or character literal that begins at `start`: one past its closing quote, or the end
/// of its line, for a quote may stand alone in a line that is no code.
std::size_t EndOfLiteral(const std::string& source, std::size_t start) {
  const char quote = source[start];
  std::size_t at = start + 1;
  while (at < source.size() && source[at] != quote && source[at] != '\n') at += source[at] == '\\' ? 2 : 1;
  return std::min(at < source.size() && source[at] == quote ? at + 1 : at, source.size());
}

/// The end of the comment that begins at `start`; `start` itself when none begins there.
std::size_t EndOfComment(const std::string& source, std::size_t start) {
  if (source.compare(start, 2, "//") == 0) return std::min(source.find('\n', start), source.size());
  if (source.compare(start, 2, "/*") != 0) return start;
  const std::size_t close = source.find("*/", start + 2);
  return close == std::string::npos ? source.size() : close + 2;
}

}  // namespace

std::vector<std::string> SourceFiles(const std::filesystem::path& root, const std::string& folder) {
  static const std::set<std::string> kExtensions = {".h",   ".cpp", ".hpp", ".cc",
                                                    ".cxx", ".hh",  ".inl", ".ipp"};
  std::vector<std::string> files;
  if (!std::filesystem::exists(root / folder)) return files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
    if (entry.is_regular_file() && kExtensions.count(entry.path().extension()) != 0) {
      files.push_back(entry.path().lexically_relative(root));
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string ReadSource(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream.is_open()) << file;
  return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

std::string WithoutComments(const std::string& source) {
  std::string text;
  for (std::size_t at = 0; at < source.size();) {
    const std::size_t commentEnd = EndOfComment(source, at);
    if (commentEnd > at) {
      text += ' ';
      text.append(static_cast<std::size_t>(
                      std::count(source.begin() + static_cast<std::ptrdiff_t>(at),
                                 source.begin() + static_cast<std::ptrdiff_t>(commentEnd), '\n')),
                  '\n');
      at = commentEnd;
      continue;
    }
    const bool isLiteral = source[at] == '"' || source[at] == '\'';
    const std::size_t end = isLiteral ? EndOfLiteral(source, at) : at + 1;
    text.append(source, at, end - at);
    at = end;
  }
  return text;
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace usbinfo_test
