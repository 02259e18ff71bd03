#include "store/Loader.h"

#include <fmt/format.h>

#include <utility>

#include "cli/model/FromJson.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"
#include "store/ColumnText.h"
#include "store/ContentHash.h"
#include "store/HostName.h"
#include "store/Refusal.h"
#include "store/Report.h"

namespace store {

namespace {

constexpr std::size_t kRecordedBytes = 1000;

cli::Inventory Parse(const Document& document, const std::string& source) {
  if (document.isTooLong) {
    throw Refusal(fmt::format("it has more than {} MiB; no machine has that many devices",
                              DocumentSplitter::kLongestDocument >> 20));
  }
  try {
    return cli::FromJson(document.text, source);
  } catch (const cli::UserError& error) {
    throw Refusal(error.what());
  }
}

/// One that is sent again is counted again, in the same row.
void Record(Database& database, const Document& document, const std::string& source, const std::string& host,
            const std::string& reason, Seconds now) {
  ContentHash hash;
  hash.Add(document.text);
  database.Execute(
      "INSERT INTO refused (hash, first_time, last_time, times, host, source, reason, head) "
      "VALUES (?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (hash) DO UPDATE SET times = refused.times + 1, "
      "last_time = excluded.last_time, host = excluded.host, source = excluded.source, reason = "
      "excluded.reason",
      {Text(hash.Text()), Integer(now), Integer(now), Integer(1), OptionalColumnText(host),
       Text(cli::EscapeForDocument(source)), Text(cli::EscapeForDocument(reason)),
       Text(cli::EscapeForDocument(document.text.substr(0, kRecordedBytes)))});
}

}  // namespace

std::optional<std::string> Loader::Load(Database& database, const Document& document,
                                        const std::string& source) {
  fLastHost.clear();
  try {
    Count(Write(database, document, source));
    return std::nullopt;
  } catch (const Refusal& refusal) {
    Record(database, document, source, fLastHost, refusal.what(), fClock.Now());
    ++fCounts.refused;
    return refusal.what();
  }
}

Outcome Loader::Write(Database& database, const Document& document, const std::string& source) {
  ReportWriter writer(database, fSettings.permissions, fClock.Now());
  const std::optional<TimelessText> text = WithoutTime(document.text);
  if (const Text host = text ? writer.WriteRepeated(*text) : std::nullopt) {
    fLastHost = *host;
    return Outcome::kUnchanged;
  }
  cli::Inventory inventory = Parse(document, source);
  if (IsHostName(inventory.SystemName())) fLastHost = inventory.SystemName();
  const Report report(std::move(inventory), fSettings.collected, text);
  return writer.Write(report);
}

void Loader::Count(Outcome outcome) {
  switch (outcome) {
    case Outcome::kChanged:
      ++fCounts.changed;
      break;
    case Outcome::kUnchanged:
      ++fCounts.unchanged;
      break;
    case Outcome::kKnown:
      ++fCounts.known;
      break;
    case Outcome::kLate:
      ++fCounts.late;
      break;
  }
}

}  // namespace store
