// A PostgreSQL server of the test's own: in a new folder, reached through a socket there only, and run by an
// ordinary user. It ends with the object, and with the test program however that ends.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {

class PostgresServer {
 public:
  /// The one server of this program; null where PostgreSQL is not installed. Throws std::runtime_error when
  /// it does not start.
  static PostgresServer* Shared();

  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;
  ~PostgresServer();

  /// The URL of a new, empty place for tables.
  std::string NewUrl();

 private:
  explicit PostgresServer(std::string programs);

  std::string Url() const;
  pid_t Start(std::string program, std::vector<std::string> arguments) const;

  std::string fPrograms;
  TemporaryFolder fFolder;
  pid_t fProcess = -1;
  int fPlaces = 0;
};

}  // namespace usbinfo_test
