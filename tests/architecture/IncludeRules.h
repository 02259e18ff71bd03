// Who may include whom: the folders of the source tree form layers, and the plug-in's folders know neither
// the stand-in host nor the command nor any library that the module does not link. This class holds the table
// and reads a tree; it owns nothing but the path.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace usbinfo_test {

class IncludeRules {
 public:
  /// The rules over the tree below `root`.
  explicit IncludeRules(std::filesystem::path root) : fRoot(std::move(root)) {}

  /// The folders that the rules are about.
  static std::vector<std::string> Folders();

  /// What breaks the rules, one "FILE:LINE: WHY" each, by folder, file and line; empty for a good tree.
  std::vector<std::string> Violations() const;

 private:
  std::filesystem::path fRoot;
};

}  // namespace usbinfo_test
