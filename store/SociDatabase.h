// SQLite and PostgreSQL through SOCI, whose headers no other file includes.
#pragma once

#include <memory>
#include <string>

#include "store/Database.h"

namespace store {

/// Opens the SQLite database in the file at `path`, which must exist; it may be empty. Waits up to ten
/// seconds for other writers, here and in every statement. Throws DatabaseError.
std::unique_ptr<Database> OpenSqlite(const std::string& path);

/// Has the database in an SQLite file keep its changes in a log, for good: readers then do not wait for
/// writers. Waits while other programs do the same, which SQLite itself does not. Throws DatabaseError.
void UseWriteAheadLog(Database& database);

/// Connects to a PostgreSQL server; `url` is what libpq takes: "postgresql://user@host:port/database?..."
/// `name` stands for it in messages. Waits up to ten seconds for each lock. Throws DatabaseError.
std::unique_ptr<Database> OpenPostgresql(const std::string& url, const std::string& name);

}  // namespace store
