// A new folder for one test's files; it goes with the object. Everybody may search it, so that tests which
// give up root's rights still find their files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace usbinfo_test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return fPath; }
  /// The path of a file in it.
  std::string File(const std::string& name) const { return fPath / name; }
  /// The same, with that content; `name` may begin with folders, which are made.
  std::string File(const std::string& name, const std::string& text) const;
  /// A shell script of that name that everybody can run.
  std::string Script(const std::string& name, const std::string& body) const;
  /// Everybody may make files in it from now on.
  void ShareWithAll() const;
  /// What is in it, in order.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path fPath;
};

}  // namespace usbinfo_test
