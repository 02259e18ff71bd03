// The tables and views of the store, and the versions of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/Database.h"

namespace store {

/// The version that this program makes and uses.
inline constexpr int kSchemaVersion = 1;

/// How a store of one version becomes one of the next, with the data in it.
struct Upgrade {
  int from;
  /// Statements in the form of SchemaText.h, each of which ends in a semicolon at the end of a line.
  const char* sql;
};

/// A version of the store, and what brings earlier ones to it.
struct SchemaDefinition {
  int version;
  /// Statements in the same form, for an empty store.
  const char* sql;
  std::vector<Upgrade> upgrades;
};

/// That of this program.
const SchemaDefinition& CurrentSchema();

/// The statements that make an empty store of that version, each ending in a semicolon and a newline.
std::string SchemaSql(Dialect dialect);

/// The version of the store in `database`; nothing where there is none. Throws DatabaseError.
std::optional<int> FindVersion(Database& database);

/// Makes an empty store, or brings one of an earlier version to this one, with the data in it, in one
/// transaction. Does nothing to one of this version. Throws DatabaseError, and UserError for a store of a
/// later version, or of one from which there is no way.
void Migrate(Database& database, const SchemaDefinition& schema = CurrentSchema());

/// Throws UserError, which says what to do, unless `database` holds a store of this version.
void RequireVersion(Database& database);

}  // namespace store
