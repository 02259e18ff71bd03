// Opens the database of the store that a command works on.
#pragma once

#include <memory>
#include <utility>

#include "store/Database.h"
#include "store/DatabaseLocation.h"

namespace store {

enum class Access {
  /// The store must exist, and have the schema of this program.
  kExisting,
  /// Where there is none, an empty one is made.
  kCreating,
  /// Whatever there is, for Migrate.
  kAny
};

/// Throws UserError and DatabaseError.
std::unique_ptr<Database> OpenStore(const DatabaseLocation& location, Access access);

/// The store of a command that goes on when the database fails: it is opened when it is needed.
class Session {
 public:
  explicit Session(DatabaseLocation location) : fLocation(std::move(location)) {}

  /// Throws as OpenStore does.
  Database& Get();
  /// The next Get opens it anew.
  void Close() { fDatabase.reset(); }

 private:
  DatabaseLocation fLocation;
  std::unique_ptr<Database> fDatabase;
};

}  // namespace store
