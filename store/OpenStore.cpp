#include "store/OpenStore.h"

#include <fmt/format.h>
#include <unistd.h>

#include "cli/text/UserError.h"
#include "store/Schema.h"
#include "store/SociDatabase.h"

namespace store {

namespace {

void RequireFile(const DatabaseLocation& location) {
  if (::access(location.target.c_str(), F_OK) == 0) return;
  throw cli::UserError(fmt::format(
      "there is no store {}; usbinfo-store load makes one, and --db names another", location.target));
}

std::unique_ptr<Database> Open(const DatabaseLocation& location, Access access) {
  if (location.dialect == Dialect::kPostgresql) return OpenPostgresql(location.target, location.Name());
  if (access == Access::kExisting) {
    RequireFile(location);
  } else {
    CreateFile(location);
  }
  return OpenSqlite(location.target);
}

}  // namespace

std::unique_ptr<Database> OpenStore(const DatabaseLocation& location, Access access) {
  std::unique_ptr<Database> database = Open(location, access);
  if (access == Access::kAny) return database;
  if (access == Access::kCreating && !FindVersion(*database)) Migrate(*database);
  RequireVersion(*database);
  const bool isSqlite = location.dialect == Dialect::kSqlite;
  if (access == Access::kCreating && isSqlite) UseWriteAheadLog(*database);
  return database;
}

Database& Session::Get() {
  if (!fDatabase) fDatabase = OpenStore(fLocation, Access::kCreating);
  return *fDatabase;
}

}  // namespace store
