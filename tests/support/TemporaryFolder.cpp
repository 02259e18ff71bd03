#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>

namespace usbinfo_test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = fs::temp_directory_path() / "usbinfo-test-XXXXXX";
  EXPECT_NE(::mkdtemp(name.data()), nullptr);
  fPath = name;
  fs::permissions(fPath, fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(fPath, ignored);
}

std::string TemporaryFolder::File(const std::string& name, const std::string& text) const {
  fs::create_directories((fPath / name).parent_path());
  std::ofstream(File(name), std::ios::binary) << text;
  return File(name);
}

std::string TemporaryFolder::Script(const std::string& name, const std::string& body) const {
  const std::string path = File(name, "#!/bin/sh\n" + body + "\n");
  constexpr fs::perms kRunnableByAll{0755};
  fs::permissions(path, kRunnableByAll);
  return path;
}

void TemporaryFolder::ShareWithAll() const {
  fs::permissions(fPath, fs::perms::all);
}

std::vector<std::string> TemporaryFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(fPath)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace usbinfo_test
