// Which database a command uses, by its option, its environment or the default.
#pragma once

#include <string>

#include "store/Database.h"

namespace store {

struct DatabaseLocation {
  Dialect dialect = Dialect::kSqlite;
  /// The path of a file, or the URL of a PostgreSQL database.
  std::string target;
  /// The user has named none: the folder is made, too.
  bool isDefault = false;

  /// What messages call it: the target without a password.
  std::string Name() const;
};

/// `option`, which is "FILE", "sqlite://FILE" or "postgresql://..."; when it is empty the environment
/// variable USBINFO_STORE_DB in the same forms, otherwise usbinfo/store.db in the user's folder for data:
/// XDG_DATA_HOME or ~/.local/share. Throws UserError where there is none.
DatabaseLocation FindDatabase(const std::string& option);

/// Throws UserError when `output`, as --output has it, names a file of the SQLite database, by any spelling
/// or link.
void RequireDistinctOutput(const DatabaseLocation& location, const std::string& output);

/// Both, for a command that uses the database and writes to `output`.
DatabaseLocation FindDatabase(const std::string& option, const std::string& output);

/// Makes sure that there is a file for the SQLite database, which only its owner can read. The default folder
/// is made as well, with the same rights. Throws UserError.
void CreateFile(const DatabaseLocation& location);

}  // namespace store
