// What the command's tests share: captures by name, texts cut into lines, locales for a
// while, and small inventories put into the stand-in host by hand.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <clocale>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/text/UserError.h"
#include "host/TCIMReference.h"
#include "host/TCIMValue.h"
#include "tests/support/HostTest.h"
#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {

/// Sets the locale of character sets until the object is destroyed.
class CharacterSet {
 public:
  explicit CharacterSet(const char* locale);
  CharacterSet(const CharacterSet&) = delete;
  CharacterSet& operator=(const CharacterSet&) = delete;
  ~CharacterSet();

 private:
  std::string fBefore;
};

/// Limits files that this process or its commands write to `bytes` until the object is destroyed; a write
/// beyond that fails, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes);
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit();

 private:
  void (*fHandler)(int);
  rlimit fBefore{};
};

/// Takes the rights of a user without files until the object is destroyed, where the tests run as root.
class NoPrivileges {
 public:
  NoPrivileges();
  NoPrivileges(const NoPrivileges&) = delete;
  NoPrivileges& operator=(const NoPrivileges&) = delete;
  ~NoPrivileges();

 private:
  uid_t fUser;
};

/// The path of the captured list of that name.
std::string CapturePath(const std::string& name);
/// The names of all captured lists.
std::vector<std::string> CaptureNames();
/// The content of the file of expected data of that name.
std::string Expected(const std::string& file);

/// A test's name for a capture's: letters and digits only.
std::string ToTestName(const std::string& text);

/// The lines of a text, without their ends.
std::vector<std::string> Lines(const std::string& text);

/// The columns that `line` takes on a terminal that knows UTF-8; fails the test for a text without a width.
int DisplayWidth(const std::string& line);

/// The text of the UserError that `action` throws; empty when it throws none.
std::string UserErrorOf(const std::function<void()>& action);

using PropertyList = std::vector<std::pair<std::string, NKESTA20::TCIMValue>>;

/// A fresh host for instances made by hand or collected through the module.
class CliTest : public HostTest {
 protected:
  using Path = NKESTA20::TCIMReference;

  /// Commits an instance of these properties; gives its path.
  Path Commit(const std::string& className, const PropertyList& properties);
  /// The same with the keys that every entity has: `deviceId` and those that name the system and the class.
  Path CommitEntity(const std::string& className, const std::string& deviceId, PropertyList properties = {});
  void Associate(const std::string& className, Path antecedent, Path dependent);

  Path AddController(const std::string& deviceId, const std::string& description);
  Path AddHub(const std::string& deviceId, const std::string& description, unsigned char ports);
  Path AddPort(const std::string& deviceId, unsigned long speed, const std::string& status);
  Path AddDevice(const std::string& deviceId, const std::string& description, unsigned char speedClass);

  /// The inventory that the host holds, as the formats get it.
  cli::Inventory Collected() const;
  /// Has the built module fill the host from a device list.
  void Collect(const std::string& deviceList);
  /// Has the built module fill the host from the services that the host has.
  static void CollectThroughModule();
};

}  // namespace usbinfo_test
