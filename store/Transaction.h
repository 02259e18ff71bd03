// A transaction: all of its statements take effect, or none does.
#pragma once

#include "store/Database.h"

namespace store {

class Transaction {
 public:
  enum class Purpose {
    /// Sees one state of the store, whatever others write meanwhile.
    kRead,
    /// On SQLite nobody else writes meanwhile; on PostgreSQL, the rows that a LockClause selects are locked.
    kWrite
  };

  /// Throws DatabaseError, as Commit does. `database` must outlive this.
  Transaction(Database& database, Purpose purpose);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Undoes everything unless Commit has returned.
  ~Transaction();

  void Commit();

 private:
  Database& fDatabase;
  bool fIsOpen = true;
};

/// What ends a SELECT whose rows no other transaction may change or lock before this one ends.
const char* LockClause(Dialect dialect);

}  // namespace store
