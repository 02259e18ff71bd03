#include "store/Transaction.h"

namespace store {

namespace {

const char* Beginning(Dialect dialect, Transaction::Purpose purpose) {
  const bool isReading = purpose == Transaction::Purpose::kRead;
  if (dialect == Dialect::kSqlite) return isReading ? "BEGIN" : "BEGIN IMMEDIATE";
  return isReading ? "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY" : "BEGIN";
}

}  // namespace

Transaction::Transaction(Database& database, Purpose purpose) : fDatabase(database) {
  database.Execute(Beginning(database.GetDialect(), purpose), {});
}

Transaction::~Transaction() {
  if (!fIsOpen) return;
  try {
    fDatabase.Execute("ROLLBACK", {});
  } catch (...) {
    // Without a connection, the database itself undoes it.
    return;
  }
}

void Transaction::Commit() {
  fDatabase.Execute("COMMIT", {});
  fIsOpen = false;
}

const char* LockClause(Dialect dialect) {
  return dialect == Dialect::kPostgresql ? " FOR UPDATE" : "";
}

}  // namespace store
