// The tables and views of the store, and the versions of them.
#pragma once

#include <optional>
#include <string>

#include "store/Database.h"

namespace store {

/// The version that this program makes and uses.
inline constexpr int kSchemaVersion = 1;

/// The statements that make an empty store of that version, each ending in a semicolon and a newline.
std::string SchemaSql(Dialect dialect);

/// The version of the store in `database`; nothing where there is none. Throws DatabaseError.
std::optional<int> FindVersion(Database& database);

/// Makes an empty store, or brings one of an earlier version to this one, with the data in it, in one
/// transaction. Does nothing to one of this version. Throws DatabaseError, and UserError for a store of a
/// later version.
void Migrate(Database& database);

/// Throws UserError, which says what to do, unless `database` holds a store of this version.
void RequireVersion(Database& database);

}  // namespace store
