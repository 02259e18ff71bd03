#include "store/SociDatabase.h"

#include <fmt/format.h>
#include <soci/soci.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>

// The headers of the backends take those of SQLite and libpq, of which nothing is needed here.
extern "C" {
soci::backend_factory const* factory_sqlite3();
soci::backend_factory const* factory_postgresql();
}

namespace store {

namespace {

struct Advice {
  /// A part of the database's message.
  std::string_view sign;
  std::string_view advice;
};

constexpr Advice kAdvice[] = {
    {"schema_version", "it belongs to another program; name another database with --db"},
    {"locked", "another program is writing to it; try again"},
    {"lock timeout", "another program is writing to it; try again"},
    {"deadlock", "another program is writing to it; try again"},
    {"readonly", "allow this user to write to the file and to its folder"},
    {"read-only", "use a server and a role that may write"},
    {"permission denied", "grant the role what it needs"},
    {"is full", "make room on the disk, and try again"},
    {"No space left", "make room on the disk, and try again"},
    {"could not extend file", "make room on the disk, and try again"},
    {"disk I/O error", "check the disk, and try again; what was loaded before is stored"},
    {"unable to open", "check the file and its folder"},
    {"not a database", "name another file with --db"},
    {"malformed", "restore it from a backup"},
};

constexpr std::string_view kOtherAdvice =
    "check that it can be reached, and try again; nothing is half-written";

std::string_view AdviceFor(const std::string& message) {
  const auto* const found = std::find_if(std::begin(kAdvice), std::end(kAdvice), [&](const Advice& advice) {
    return message.find(advice.sign) != std::string::npos;
  });
  return found == std::end(kAdvice) ? kOtherAdvice : found->advice;
}

/// Without the name of SOCI's function: "sqlite3_statement_backend::prepare: ".
std::string WithoutFunction(const std::string& message) {
  const std::size_t colons = message.find("::");
  const std::size_t blank = message.find(' ');
  return colons < blank && blank != std::string::npos ? message.substr(blank + 1) : message;
}

/// What the database says, on one line: without what SOCI puts before it, the lines in which a server repeats
/// the statement, and the indented ones in which libpq guesses at reasons.
std::string MessageOf(const soci::soci_error& error) {
  std::string message = WithoutFunction(error.get_error_message());
  for (const std::string_view beginning :
       {"Cannot establish connection to the database.", "Cannot prepare statement.", "Cannot execute query.",
        "Fatal error.", "Connection failed."}) {
    if (message.starts_with(beginning)) message.erase(0, message.find_first_not_of(" \n", beginning.size()));
  }
  for (const std::string_view severity : {"ERROR:  ", "FATAL:  "}) {
    if (!message.starts_with(severity)) continue;
    message = message.substr(0, message.find('\n')).substr(severity.size());
  }
  for (std::size_t at = message.find("\n\t"); at != std::string::npos; at = message.find("\n\t")) {
    message.erase(at, message.find('\n', at + 1) - at);
  }
  std::replace(message.begin(), message.end(), '\n', ' ');
  message.erase(message.find_last_not_of(" .") + 1);
  return message;
}

[[noreturn]] void Throw(const std::string& name, const soci::soci_error& error) {
  const std::string message = MessageOf(error);
  throw DatabaseError(fmt::format("the store {}: {}; {}", name, message, AdviceFor(message)));
}

/// SOCI's form of a statement: `:p1` for the first `?`, and so on.
std::string WithNames(const std::string& sql) {
  std::string named;
  std::size_t number = 0;
  for (const char c : sql) {
    if (c == '?') {
      named += fmt::format(":p{}", ++number);
    } else {
      named += c;
    }
  }
  return named;
}

/// A place that a prepared statement takes a value from.
class BoundValue {
 public:
  void BindTo(soci::statement& statement, const Parameter& parameter) {
    if (std::holds_alternative<Integer>(parameter)) {
      statement.exchange(soci::use(fInteger, fIndicator));
    } else if (std::holds_alternative<Decimal>(parameter)) {
      statement.exchange(soci::use(fDecimal, fIndicator));
    } else {
      statement.exchange(soci::use(fText, fIndicator));
    }
  }

  void Set(const Parameter& parameter) {
    if (const auto* const integer = std::get_if<Integer>(&parameter)) {
      Store(*integer, fInteger);
    } else if (const auto* const decimal = std::get_if<Decimal>(&parameter)) {
      Store(*decimal, fDecimal);
    } else {
      Store(std::get<Text>(parameter), fText);
    }
  }

 private:
  template <typename From, typename To>
  void Store(const std::optional<From>& from, To& to) {
    fIndicator = from ? soci::i_ok : soci::i_null;
    if (from) to = *from;
  }

  long long fInteger = 0;
  double fDecimal = 0;
  std::string fText;
  soci::indicator fIndicator = soci::i_ok;
};

struct FetchedCell {
  std::string text;
  soci::indicator indicator = soci::i_ok;
};

/// A statement that the database has read once and runs as often as needed.
class PreparedStatement {
 public:
  PreparedStatement(soci::session& session, const Query& query, const Parameters& parameters)
      : fValues(parameters.size()), fCells(query.columns), fStatement(session) {
    for (FetchedCell& cell : fCells) fStatement.exchange(soci::into(cell.text, cell.indicator));
    for (std::size_t index = 0; index < parameters.size(); ++index) {
      fValues[index].BindTo(fStatement, parameters[index]);
    }
    fStatement.alloc();
    fStatement.prepare(WithNames(query.sql));
    fStatement.define_and_bind();
  }

  std::uint64_t Execute(const Parameters& parameters) {
    Set(parameters);
    fStatement.execute(true);
    return static_cast<std::uint64_t>(std::max(fStatement.get_affected_rows(), 0LL));
  }

  /// Fetches to the end, since SQLite keeps its lock until then.
  void Select(const Parameters& parameters, const std::function<void(const Row&)>& take) {
    Set(parameters);
    for (bool isRow = fStatement.execute(true); isRow; isRow = fStatement.fetch()) take(Fetched());
  }

 private:
  void Set(const Parameters& parameters) {
    for (std::size_t index = 0; index < parameters.size(); ++index) fValues[index].Set(parameters[index]);
  }

  Row Fetched() const {
    std::vector<Text> cells;
    cells.reserve(fCells.size());
    for (const FetchedCell& cell : fCells) {
      cells.push_back(cell.indicator == soci::i_null ? Text() : Text(cell.text));
    }
    return Row(std::move(cells));
  }

  // The statement points into both.
  std::vector<BoundValue> fValues;
  std::vector<FetchedCell> fCells;
  soci::statement fStatement;
};

class SociDatabase : public Database {
 public:
  SociDatabase(Dialect dialect, std::string name, const soci::backend_factory& backend,
               const std::string& connection)
      : fDialect(dialect), fName(std::move(name)) {
    try {
      fSession.open(backend, connection);
    } catch (const soci::soci_error& error) {
      Throw(fName, error);
    }
  }

  Dialect GetDialect() const override { return fDialect; }
  const std::string& Name() const override { return fName; }

  std::uint64_t Execute(const std::string& sql, const Parameters& parameters) override {
    std::uint64_t changed = 0;
    Run({sql, 0}, parameters, [&](PreparedStatement& statement) { changed = statement.Execute(parameters); });
    return changed;
  }

  void Select(const Query& query, const Parameters& parameters,
              const std::function<void(const Row&)>& take) override {
    Run(query, parameters, [&](PreparedStatement& statement) { statement.Select(parameters, take); });
  }

 private:
  template <typename Action>
  void Run(const Query& query, const Parameters& parameters, Action action) {
    try {
      action(Prepared(query, parameters));
    } catch (const soci::soci_error& error) {
      fStatements.erase(query.sql);
      Throw(fName, error);
    } catch (...) {
      // It may have rows left.
      fStatements.erase(query.sql);
      throw;
    }
  }

  PreparedStatement& Prepared(const Query& query, const Parameters& parameters) {
    constexpr std::size_t kMostStatements = 64;
    const auto found = fStatements.find(query.sql);
    if (found != fStatements.end()) return *found->second;
    if (fStatements.size() == kMostStatements) fStatements.clear();
    auto statement = std::make_unique<PreparedStatement>(fSession, query, parameters);
    return *fStatements.emplace(query.sql, std::move(statement)).first->second;
  }

  Dialect fDialect;
  std::string fName;
  soci::session fSession;
  std::unordered_map<std::string, std::unique_ptr<PreparedStatement>> fStatements;
};

/// A file, whatever its name.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;

  bool operator==(const FileIdentity&) const = default;
};

FileIdentity IdentityOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? FileIdentity{status.st_dev, status.st_ino} : FileIdentity{};
}

/// SQLite goes on in a file that was deleted or replaced; what it commits there would be lost.
class SqliteDatabase : public SociDatabase {
 public:
  explicit SqliteDatabase(const std::string& path)
      : SociDatabase(Dialect::kSqlite, path, *factory_sqlite3(),
                     fmt::format("db=\"{}\" timeout=10", PathOf(path))),
        fFile(IdentityOf(path)) {}

  std::uint64_t Execute(const std::string& sql, const Parameters& parameters) override {
    const std::uint64_t changed = SociDatabase::Execute(sql, parameters);
    if (sql == "COMMIT" && IdentityOf(Name()) != fFile) {
      throw DatabaseError(fmt::format(
          "the store {}: its file was deleted or replaced meanwhile; run the command again", Name()));
    }
    return changed;
  }

 private:
  /// Names such as ":memory:" mean something else to SQLite.
  static std::string PathOf(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

  FileIdentity fFile;
};

}  // namespace

std::unique_ptr<Database> OpenSqlite(const std::string& path) {
  if (path.find('"') != std::string::npos) {
    throw DatabaseError(
        fmt::format("the store {}: its path must not hold a double quote; name another file", path));
  }
  auto database = std::make_unique<SqliteDatabase>(path);
  database->Execute("PRAGMA foreign_keys = ON", {});
  // What a command has loaded outlives a power failure.
  database->Execute("PRAGMA synchronous = FULL", {});
  return database;
}

void UseWriteAheadLog(Database& database) {
  using std::chrono::steady_clock;
  constexpr std::chrono::seconds kLongestWait{10};
  constexpr std::chrono::milliseconds kPause{5};
  const steady_clock::time_point deadline = steady_clock::now() + kLongestWait;
  while (true) {
    try {
      FirstRow(database, {"PRAGMA journal_mode = WAL", 1}, {});
      return;
    } catch (const DatabaseError& error) {
      const bool isLocked = std::string_view(error.what()).find("locked") != std::string_view::npos;
      if (!isLocked || steady_clock::now() > deadline) throw;
    }
    std::this_thread::sleep_for(kPause);
  }
}

std::unique_ptr<Database> OpenPostgresql(const std::string& url, const std::string& name) {
  auto database = std::make_unique<SociDatabase>(Dialect::kPostgresql, name, *factory_postgresql(), url);
  database->Execute("SET client_encoding TO 'UTF8'", {});
  database->Execute("SET client_min_messages TO warning", {});
  database->Execute("SET lock_timeout TO '10s'", {});
  // Transactions that wait for each other go on, whatever the server is set to.
  database->Execute("SET default_transaction_isolation TO 'read committed'", {});
  const auto encoding = FirstRow(*database, {"SHOW server_encoding", 1}, {});
  if (!encoding || encoding->String(0) != "UTF8") {
    throw DatabaseError(fmt::format(
        "the store {}: the database must have the encoding UTF8; make one with createdb -E UTF8", name));
  }
  return database;
}

}  // namespace store
