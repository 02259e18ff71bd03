#include "cli/collect/OriginNotes.h"

#include <fmt/format.h>

#include <ctime>

#include "cli/collect/MachineId.h"
#include "cli/model/DeviceText.h"
#include "cli/text/Message.h"
#include "cli/text/UtcTime.h"

namespace cli {

namespace {

std::vector<Repair> NoteRepairs(const kernel::ListRepairs& repairs) {
  std::vector<Repair> notes;
  if (repairs.parents > 0) notes.push_back({"parent", repairs.parents});
  if (repairs.staleInterfaces > 0) notes.push_back({"stale-interface", repairs.staleInterfaces});
  return notes;
}

std::vector<Finding> NoteFindings(const std::vector<kernel::ListFinding>& findings) {
  std::vector<Finding> notes;
  notes.reserve(findings.size());
  for (const kernel::ListFinding& finding : findings) {
    notes.push_back({std::string(NameOf(finding.code)),
                     {finding.lines.begin(), finding.lines.end()},
                     fmt::format("Bus {}  Device {:>3}", finding.bus, finding.number)});
  }
  return notes;
}

}  // namespace

Origin NoteOrigin(const std::string& source, const PreparedList& list, const ListTreatment& treatment) {
  Origin origin;
  origin.source = source;
  if (source != "list") {
    origin.collected = FormatUtc(std::time(nullptr));
    origin.machine = MachineIdHash();
  }
  origin.program = "usbinfo " USBINFO_VERSION;
  origin.findings = NoteFindings(list.findings);
  origin.repairs = NoteRepairs(list.repairs);
  if (treatment.mask) origin.masked = Masking{treatment.mask->Fingerprint()};
  return origin;
}

void WarnOfRepairs(const kernel::ListRepairs& repairs) {
  if (repairs.parents > 0) {
    PrintMessage(
        fmt::format("the device list has wrong parents for {}; they were corrected (--as-is keeps them)",
                    Count(repairs.parents, "device")));
  }
  if (repairs.staleInterfaces > 0) {
    PrintMessage(
        fmt::format("the device list has interfaces for {} without a configuration; they were left out "
                    "(--as-is keeps them)",
                    Count(repairs.staleInterfaces, "device")));
  }
}

}  // namespace cli
