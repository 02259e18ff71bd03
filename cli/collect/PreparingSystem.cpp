#include "cli/collect/PreparingSystem.h"

#include <algorithm>
#include <utility>

#include "kernel/ListRecords.h"

namespace cli {

namespace {

bool HasWordOfMissingCommand(std::string_view text) {
  return text.find("command-not-found") != std::string_view::npos;
}

bool HasWordInARecord(std::string_view list) {
  const std::vector<kernel::ListRecord> records = kernel::RecordsOf(list);
  return std::any_of(records.begin(), records.end(), [](const kernel::ListRecord& record) {
    return std::any_of(record.lines.begin(), record.lines.end(),
                       [](const kernel::ListLine& line) { return HasWordOfMissingCommand(line.text); });
  });
}

}  // namespace

PreparingSystem::PreparingSystem(std::unique_ptr<standin::OperatingSystem> next, ListTreatment treatment,
                                 std::shared_ptr<ListOnItsWay> onItsWay)
    : ForwardingSystem(std::move(next)), fTreatment(std::move(treatment)), fOnItsWay(std::move(onItsWay)) {}

std::string PreparingSystem::CaptureFile(const std::string& path) {
  return Prepare(ForwardingSystem::CaptureFile(path)).read;
}

std::string PreparingSystem::SpawnProcess(const std::string& command, int seconds) {
  const PreparedList& list = Prepare(ForwardingSystem::SpawnProcess(command, seconds));
  fOnItsWay->isWithheld = !fTreatment.isAsIs && HasWordInARecord(list.read);
  return fOnItsWay->isWithheld ? std::string() : list.read;
}

const PreparedList& PreparingSystem::Prepare(const std::string& text) {
  return fOnItsWay->list.emplace(PrepareList(text, fTreatment));
}

}  // namespace cli
