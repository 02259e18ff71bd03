#include "store/FindCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "cli/collect/SerialMask.h"
#include "cli/model/Kinds.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "cli/text/Text.h"
#include "store/ColumnText.h"
#include "store/DatabaseLocation.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/Transaction.h"

using cli::Importance;

namespace store {

namespace {

/// Conditions that all must hold, and the values in them. The texts are the program's own.
class Conditions {
 public:
  void Add(const std::string& condition, Parameters values = {}) {
    fSql += " AND (" + condition + ")";
    fValues.insert(fValues.end(), values.begin(), values.end());
  }

  const std::string& Sql() const { return fSql; }
  const Parameters& Values() const { return fValues; }

 private:
  std::string fSql;
  Parameters fValues;
};

/// `text` as LIKE finds it anywhere; for ESCAPE '!'.
std::string Pattern(const std::string& text) {
  std::string pattern = "%";
  for (const char c : text) {
    if (c == '%' || c == '_' || c == '!') pattern += '!';
    pattern += c;
  }
  return pattern + '%';
}

void AddTime(const FindOptions& options, Seconds now, Conditions& conditions) {
  if (!options.at) {
    conditions.Add("until IS NULL");
    return;
  }
  const Integer at = options.at->At(now);
  conditions.Add("since <= ? AND (until IS NULL OR until > ?)", {at, at});
}

void AddIds(const std::vector<cli::VendorProduct>& ids, Conditions& conditions) {
  std::string any;
  Parameters values;
  const auto addPart = [&](const char* column, const std::optional<std::uint16_t>& number) {
    if (!number) return;
    any += fmt::format(" AND {} = ?", column);
    values.emplace_back(Text(fmt::format("{:04x}", *number)));
  };
  for (const cli::VendorProduct& id : ids) {
    any += any.empty() ? "(vendor_id IS NOT NULL" : " OR (vendor_id IS NOT NULL";
    addPart("vendor_id", id.vendor);
    addPart("product_id", id.product);
    any += ")";
  }
  if (!any.empty()) conditions.Add(any, std::move(values));
}

/// Where serial numbers are masked with the key, its mask is looked for, too.
void AddSerial(const FindOptions& options, Conditions& conditions) {
  if (options.serial.empty()) return;
  const Text plain = ColumnText(options.serial);
  if (options.maskKey.empty()) {
    conditions.Add("serial = ?", {plain});
  } else {
    const Text masked = cli::SerialMask::OfKeyFile(options.maskKey).Mask(options.serial);
    conditions.Add("serial IN (?, ?)", {plain, masked});
  }
}

Conditions ConditionsOf(const FindOptions& options, Seconds now) {
  Conditions conditions;
  AddTime(options, now, conditions);
  AddIds(options.ids, conditions);
  AddSerial(options, conditions);
  if (!options.kind.empty()) {
    conditions.Add("kinds IS NOT NULL AND ',' || kinds || ',' LIKE ? ESCAPE '!'",
                   {Text(Pattern("," + options.kind + ","))});
  }
  if (!options.name.empty()) {
    conditions.Add("words IS NOT NULL AND words LIKE ? ESCAPE '!'",
                   {Text(Pattern(ColumnText(cli::ToLower(options.name))))});
  }
  // As in other lists, root hubs are shown only when they are named.
  if (options.ids.empty() && options.serial.empty()) conditions.Add("is_root IS NULL OR is_root = 0");
  return conditions;
}

/// The columns of the query below.
enum DeviceColumn : std::size_t {
  kHost,
  kPlace,
  kIdentifier,
  kKinds,
  kManufacturer,
  kProduct,
  kVendorId,
  kProductId,
  kSerial,
  kSpeed,
  kDrivers,
  kSince,
  kUntil,
  kDeviceColumns
};

std::vector<Row> SelectDevices(Database& database, const Conditions& conditions) {
  const std::string sql =
      "SELECT host.name, place, identifier, kinds, manufacturer, product, vendor_id, product_id, serial, "
      "speed, "
      "drivers, since, until FROM item JOIN host ON host.id = item.host_id WHERE section IN (1, 3)" +
      conditions.Sql();
  std::vector<Row> rows = Rows(database, {sql, kDeviceColumns}, conditions.Values());
  // Databases sort texts by their own rules.
  const auto key = [](const Row& row) {
    return std::make_tuple(row.String(kHost), row.String(kPlace), row.String(kIdentifier));
  };
  std::sort(rows.begin(), rows.end(),
            [&](const Row& left, const Row& right) { return key(left) < key(right); });
  return rows;
}

Cell ListIn(const Row& row, std::size_t column) {
  return cli::SplitAtCommas(row.String(column));
}

/// The place, or the identifier where the kernel's name is not known.
std::string PlaceIn(const Row& row) {
  return row.IsNull(kPlace) ? row.String(kIdentifier) : row.String(kPlace);
}

ResultList ListOf(const std::vector<Row>& rows) {
  ResultList list("devices", {{.name = "host", .importance = Importance::kIdentifier},
                              {.name = "place", .importance = Importance::kMain},
                              {.name = "kinds", .importance = Importance::kMain},
                              {.name = "manufacturer", .importance = Importance::kMinor},
                              {.name = "product"},
                              {.name = "id", .importance = Importance::kMain},
                              {.name = "serial", .importance = Importance::kMain},
                              {.name = "speed", .isNumber = true, .isForPrograms = true},
                              {.name = "drivers", .isForPrograms = true},
                              {.name = "since", .importance = Importance::kMinor},
                              {.name = "until", .isForPrograms = true}});
  for (const Row& row : rows) {
    list.AddRow({row.String(kHost), PlaceIn(row), ListIn(row, kKinds),
                 CellOf(row.OptionalString(kManufacturer)), CellOf(row.OptionalString(kProduct)),
                 row.String(kVendorId) + ":" + row.String(kProductId), CellOf(row.OptionalString(kSerial)),
                 CellOf(row.OptionalReal(kSpeed)), ListIn(row, kDrivers),
                 TimeCell(row.OptionalNumber(kSince)), TimeCell(row.OptionalNumber(kUntil))});
  }
  return list;
}

std::string AdviseOnNothing(Database& database, const FindOptions& options) {
  const bool asksForMasked = !options.serial.empty() && options.maskKey.empty();
  const Query masked = {"SELECT 1 FROM host WHERE mask <> 'none' LIMIT 1", 1};
  if (asksForMasked && FirstRow(database, masked, {})) {
    return "no device found; serial numbers of some hosts are masked: name the key with --mask-key";
  }
  return "no device found; leave an option out to see more";
}

std::string KindOf(const std::string& text) {
  return cli::NameOf(text, cli::AllKinds());
}

/// -d VID:[PID], as usbinfo has it.
cli::Option IdOption(std::vector<cli::VendorProduct>& ids) {
  return {
      .names = {"-d"},
      .value = "VID:[PID]",
      .help = "Find devices of these vendor and product numbers",
      .isRepeatable = true,
      .manual =
          R"(Find devices and hubs of this vendor, and of this product if it is given, by their hexadecimal
numbers.)",
      .store = [&ids](const std::string& text) {
        const auto id = cli::ParseVendorProduct(text);
        if (!id) throw cli::UsageError("needs hexadecimal numbers such as 1d6b: or 1d6b:0002");
        ids.push_back(*id);
      }};
}

std::vector<cli::Option> SerialOptions(FindOptions& options) {
  return {{.names = {"--serial"},
           .value = "SERIAL",
           .help = "Find devices with this serial number",
           .manual = "Find devices and hubs with exactly this serial number.",
           .store = cli::StoreText(options.serial)},
          {.names = {"--mask-key"},
           .value = "FILE",
           .help = "Find the serial number where it is masked with the key in FILE, too",
           .requiredOption = "--serial",
           .manual = R"(Find the serial number also where it is masked with the key in this file, the one that
.Xr usbinfo 1
was given.)",
           .store = cli::StoreText(options.maskKey)}};
}

std::vector<cli::Option> DescriptionOptions(FindOptions& options) {
  return {{.names = {"--kind"},
           .value = "KIND",
           .help = "Find devices of this kind, such as \"mass storage\"",
           .manual = R"(Find devices of this kind, such as
.Cm keyboard
or
.Dq mass storage .)",
           .store = StoreParsed(options.kind, KindOf)},
          {.names = {"--name"},
           .value = "TEXT",
           .help = "Find devices with this text in the names of manufacturer and product",
           .manual = R"(Find devices and hubs that have this text in
.Dq MANUFACTURER PRODUCT ,
as they send these.
Upper and lower case of ASCII letters do not matter.)",
           .store = cli::StoreText(options.name)}};
}

}  // namespace

std::vector<cli::Option> FindOptionTable(FindOptions& options) {
  std::vector<cli::Option> table = {DatabaseOption(options.database), IdOption(options.ids)};
  for (const std::vector<cli::Option>& more : {SerialOptions(options), DescriptionOptions(options)}) {
    table.insert(table.end(), more.begin(), more.end());
  }
  table.push_back(AtOption(options.at));
  return WithListOptions(std::move(table), options.list);
}

int RunFind(const FindOptions& options, const Clock& clock) {
  cli::RequireDistinctFiles({"--output", options.list.output}, {{"--mask-key", options.maskKey}});
  const auto database = OpenStore(FindDatabase(options.database, options.list.output), Access::kExisting);
  const Conditions conditions = ConditionsOf(options, clock.Now());
  const Transaction transaction(*database, Transaction::Purpose::kRead);
  const ResultList list = ListOf(SelectDevices(*database, conditions));
  if (!list.IsEmpty() || options.list.format != "table") Print(list, options.list);
  if (!list.IsEmpty()) return cli::kPrinted;
  PrintMessage(AdviseOnNothing(*database, options));
  return cli::kNothingFound;
}

}  // namespace store
