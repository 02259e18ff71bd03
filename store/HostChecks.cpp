#include "store/HostChecks.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "cli/model/DeviceText.h"
#include "cli/model/JsonValues.h"
#include "cli/model/OriginText.h"
#include "cli/policy/PolicyCheckJson.h"
#include "cli/policy/PolicyCheckText.h"
#include "cli/text/JsonWriter.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"
#include "store/ReportReader.h"

namespace store {

namespace {

class TextOfChecks : public HostChecks {
 public:
  explicit TextOfChecks(const cli::Policy& policy) : fPolicy(policy) {}

  void Add(const HostCheck& check) override {
    const std::string host = cli::EscapeForDocument(check.host);
    if (check.checked == nullptr) {
      fText += fmt::format("{}: not checked: {}\n", host, cli::EscapeForDocument(check.failure));
    } else {
      fText += cli::RenderRefused(fPolicy, *check.checked, host + ": ");
    }
  }

  std::string Take(const HostTotals& totals) override {
    if (fText.empty()) return {};
    fText += fmt::format("{} of {} not allowed, on {} of {}", totals.refusedDevices,
                         cli::Count(totals.devices, "device"), totals.refused,
                         cli::Count(totals.hosts - totals.failed, "host"));
    if (totals.failed != 0) fText += fmt::format("; {} not checked", cli::Count(totals.failed, "host"));
    return cli::InCharacterSetOfLocale(fText + "\n");
  }

 private:
  const cli::Policy& fPolicy;
  std::string fText;
};

class JsonOfChecks : public HostChecks {
 public:
  explicit JsonOfChecks(const cli::Policy& policy) {
    fJson.BeginObject();
    cli::WriteMember(fJson, "schema", std::string("usbinfo.checks/1"));
    cli::WriteMember(fJson, "policy", policy.name);
    cli::WriteMember(fJson, "default", std::string(NameOf(policy.defaultTarget)));
    fJson.Key("hosts");
    fJson.BeginArray();
  }

  void Add(const HostCheck& check) override {
    const bool isChecked = check.checked != nullptr;
    fJson.BeginObject();
    cli::WriteMember(fJson, "host", check.host);
    cli::WriteMember(fJson, "collected", FormatTime(check.collected));
    fJson.Key("suspect");
    fJson.Bool(check.isSuspect);
    cli::WriteMember(fJson, "error", isChecked ? std::nullopt : std::optional(check.failure));
    fJson.Key("devices");
    if (isChecked) {
      fJson.Number(check.checked->devices.size());
    } else {
      fJson.Null();
    }
    WriteRefused(check);
    fJson.EndObject();
  }

  std::string Take(const HostTotals& /*totals*/) override {
    fJson.EndArray();
    fJson.EndObject();
    return fJson.Take() + "\n";
  }

 private:
  void WriteRefused(const HostCheck& check) {
    fJson.Key("refused");
    fJson.BeginArray();
    if (check.checked != nullptr) {
      for (const cli::CheckedDevice& device : check.checked->devices) {
        if (!device.IsAllowed()) cli::WriteCheckedDevice(fJson, device);
      }
    }
    fJson.EndArray();
  }

  cli::JsonWriter fJson{cli::JsonWriter::Layout::kIndented};
};

struct LastReport {
  std::string host;
  Seconds collected;
};

/// Those that were collected by then, by the names of the hosts.
std::vector<LastReport> SelectLastReports(Database& database, Seconds at) {
  std::vector<LastReport> reports;
  database.Select({"SELECT host.name, MAX(report.collected) FROM host "
                   "JOIN report ON report.host_id = host.id WHERE report.collected <= ? GROUP BY host.name",
                   2},
                  {Integer(at)}, [&](const Row& row) {
                    reports.push_back({row.String(0), row.Number(1)});
                  });
  // Databases sort texts by their own rules.
  std::sort(reports.begin(), reports.end(),
            [](const LastReport& left, const LastReport& right) { return left.host < right.host; });
  return reports;
}

class HostChecker {
 public:
  HostChecker(const CheckSettings& settings, HostChecks& checks) : fSettings(settings), fChecks(checks) {}

  void Check(const LastReport& report, const cli::Inventory& inventory) {
    HostCheck check = {.host = report.host, .collected = report.collected, .failure = {}};
    std::optional<cli::CheckedInventory> checked;
    try {
      check.isSuspect = inventory.GetOrigin() && !inventory.GetOrigin()->findings.empty();
      if (check.isSuspect && !fSettings.allowsSuspect) ThrowSuspect(inventory);
      checked = cli::Check(fSettings.policy, inventory, report.host);
      check.checked = &*checked;
    } catch (const cli::UserError& error) {
      check.failure = error.what();
    }
    Count(checked);
    fChecks.Add(check);
  }

  const HostTotals& Totals() const { return fTotals; }

 private:
  [[noreturn]] static void ThrowSuspect(const cli::Inventory& inventory) {
    throw cli::UserError(cli::DescribeForgery(inventory.GetOrigin()->findings.front()) +
                         "; to check anyway, use --allow-suspect");
  }

  void Count(const std::optional<cli::CheckedInventory>& checked) {
    ++fTotals.hosts;
    if (!checked) {
      ++fTotals.failed;
      return;
    }
    const std::size_t refused = checked->CountRefused();
    fTotals.devices += checked->devices.size();
    fTotals.refusedDevices += refused;
    if (refused != 0) ++fTotals.refused;
  }

  const CheckSettings& fSettings;
  HostChecks& fChecks;
  HostTotals fTotals;
};

}  // namespace

std::unique_ptr<HostChecks> HostChecks::AsText(const cli::Policy& policy) {
  return std::make_unique<TextOfChecks>(policy);
}

std::unique_ptr<HostChecks> HostChecks::AsJson(const cli::Policy& policy) {
  return std::make_unique<JsonOfChecks>(policy);
}

HostTotals CheckHosts(Database& database, const CheckSettings& settings, HostChecks& checks) {
  HostChecker checker(settings, checks);
  for (const LastReport& report : SelectLastReports(database, settings.at)) {
    const std::optional<cli::Inventory> inventory = ReadReportWithin(database, report.host, settings.at);
    if (inventory) checker.Check(report, *inventory);
  }
  return checker.Totals();
}

}  // namespace store
