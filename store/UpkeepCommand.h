// `usbinfo-store forget`, `rename`, `prune`, `migrate` and `schema`: upkeep of the store.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct ForgetOptions {
  std::string database;
  ListOptions list;
  std::string host;
};

struct RenameOptions {
  std::string database;
  ListOptions list;
  std::string before;
  std::string after;
};

struct PruneOptions {
  std::string database;
  ListOptions list;
  std::optional<Seconds> keep;
};

struct MigrateOptions {
  std::string database;
  ListOptions list;
};

struct SchemaOptions {
  std::string dialect = "sqlite";
  std::string output;
};

std::vector<cli::Operand> ForgetOperands(ForgetOptions& options);
std::vector<cli::Option> ForgetOptionTable(ForgetOptions& options);
std::vector<cli::Operand> RenameOperands(RenameOptions& options);
std::vector<cli::Option> RenameOptionTable(RenameOptions& options);
std::vector<cli::Option> PruneOptionTable(PruneOptions& options);
/// Throws UsageError unless it says what to keep.
void CheckPrune(const PruneOptions& options);
std::vector<cli::Option> MigrateOptionTable(MigrateOptions& options);
std::vector<cli::Option> SchemaOptionTable(SchemaOptions& options);

/// Give the exit status. Throw UserError and DatabaseError.
int RunForget(const ForgetOptions& options);
int RunRename(const RenameOptions& options);
int RunPrune(const PruneOptions& options, const Clock& clock);
int RunMigrate(const MigrateOptions& options);
int RunSchema(const SchemaOptions& options);

}  // namespace store
