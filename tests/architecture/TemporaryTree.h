// A source tree made up for one test; it is deleted with the object.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace usbinfo_test {

class TemporaryTree {
 public:
  TemporaryTree() {
    std::string path = ::testing::TempDir() + "usbinfo-tree-XXXXXX";
    EXPECT_NE(::mkdtemp(path.data()), nullptr);
    fRoot = path;
  }
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;
  ~TemporaryTree() {
    std::error_code ignored;
    std::filesystem::remove_all(fRoot, ignored);
  }

  const std::filesystem::path& Root() const { return fRoot; }

  void Write(const std::string& file, const std::string& text) {
    std::filesystem::create_directories((fRoot / file).parent_path());
    std::ofstream(fRoot / file, std::ios::binary) << text;
  }

 private:
  std::filesystem::path fRoot;
};

}  // namespace usbinfo_test
