// Loads documents into the store, each as a whole or not at all.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "store/Clock.h"
#include "store/Database.h"
#include "store/DocumentSplitter.h"
#include "store/ReportWriter.h"

namespace store {

struct LoadSettings {
  /// When the documents were collected that do not say it themselves.
  std::optional<Seconds> collected;
  Permissions permissions;
};

/// Numbers of documents.
struct LoadCounts {
  std::size_t changed = 0;
  std::size_t unchanged = 0;
  std::size_t known = 0;
  std::size_t late = 0;
  std::size_t refused = 0;

  std::size_t Total() const { return changed + unchanged + known + late + refused; }
};

class Loader {
 public:
  /// `clock` must outlive this.
  Loader(const Clock& clock, LoadSettings settings) : fClock(clock), fSettings(settings) {}

  /// Takes a document, which messages call `source`, into the store. Gives the reason when it was refused
  /// instead, which the store then holds. Throws DatabaseError; the store is then as before.
  std::optional<std::string> Load(Database& database, const Document& document, const std::string& source);

  const LoadCounts& Counts() const { return fCounts; }
  /// The host of the last document; empty when the document did not name it.
  const std::string& LastHost() const { return fLastHost; }

 private:
  Outcome Write(Database& database, const Document& document, const std::string& source);
  void Count(Outcome outcome);

  const Clock& fClock;
  LoadSettings fSettings;
  LoadCounts fCounts;
  std::string fLastHost;
};

}  // namespace store
