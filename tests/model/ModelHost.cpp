#include "tests/model/ModelHost.h"

#include <algorithm>

using standin::HostOperation;

namespace usbinfo_test {

namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

std::vector<std::string> KeysOf(const std::string& className) {
  const bool isAssociation = className == "KALDO_USBPortOnHub" || className == "KALDO_USBConnection";
  if (isAssociation) return {"Antecedent", "Dependent"};
  return {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName"};
}

std::string PathOf(const ModelInstance& instance) {
  std::string path = instance.className;
  char separator = '.';
  for (const std::string& key : KeysOf(instance.className)) {
    path += separator + key + "=" + Quoted(instance.properties.at(key));
    separator = ',';
  }
  return path;
}

}  // namespace

ModelHost::ModelHost(const Scenario& scenario, const std::optional<Fault>& fault, bool keepsCalls)
    : fScenario(scenario), fFault(fault) {
  fOutcome.trace = CallTrace(keepsCalls);
}

void ModelHost::ThrowIf(Fault::Moment moment, std::size_t call) {
  if (!fFault || fFault->moment != moment || fFault->call != call) return;
  const FaultKind kind = fFault->kind;
  fFault.reset();
  if (kind == FaultKind::kHostException) throw ModelHostError{"CIM_ERR_FAILED"};
  throw ModelOtherError{kind};
}

void ModelHost::OwnStep() {
  const std::size_t begun = fOutcome.trace.Count();
  if (begun > 0) ThrowIf(Fault::Moment::kRightAfter, begun - 1);
}

void ModelHost::Call(HostOperation operation, const std::string& subject) {
  OwnStep();
  const std::size_t number = fOutcome.trace.Count();
  ThrowIf(Fault::Moment::kRightBefore, number);
  fOutcome.trace.Add(operation, subject);
  ThrowIf(Fault::Moment::kInCall, number);
}

void ModelHost::Log(int severity, const std::string& text) {
  Call(HostOperation::kGetCoreLogger);
  Call(HostOperation::kWriteLog, text);
  fOutcome.log.push_back({severity, text});
}

std::string ModelHost::What(const ModelHostError& error) {
  OwnStep();
  try {
    Call(HostOperation::kTranslateStatusCode, error.status);
  } catch (...) {
    return std::string();
  }
  return error.status;
}

std::string ModelHost::MakeText(const std::string& text) {
  Call(HostOperation::kMakeStringValue, text);
  return text;
}

std::string ModelHost::MakeNumber(unsigned long number) {
  const std::string text = std::to_string(number);
  Call(HostOperation::kMakeNumberValue, text);
  return text;
}

std::string ModelHost::MakeTextArray(const std::string& text) {
  Call(HostOperation::kMakeStringValue, text);
  Call(HostOperation::kMakeArrayValue, "1");
  return "{" + text + "}";
}

void ModelHost::Insert(Properties& properties, const std::string& name, const std::string& value) {
  Call(HostOperation::kIsNull);
  properties.emplace(name, value);
}

void ModelHost::InsertByWayOfText(Properties& properties, const std::string& name, const std::string& text) {
  Call(HostOperation::kMakeStringValue, text);
  Call(HostOperation::kConvertToString);
  if (text.empty()) return;
  Call(HostOperation::kMakeStringValue, text);
  properties.emplace(name, text);
}

void ModelHost::Commit(const ModelInstancePointer& instance) {
  Call(HostOperation::kCommit, instance->className);
  auto& committed = fInstances[instance->className];
  instance->path = PathOf(*instance);
  const auto same = std::find_if(committed.begin(), committed.end(),
                                 [&](const auto& other) { return other->path == instance->path; });
  if (same == committed.end()) {
    committed.push_back(instance);
  } else {
    *same = instance;
  }
}

std::vector<ModelInstancePointer> ModelHost::Enumerate(const std::string& className) {
  Call(HostOperation::kGetClass, className);
  Call(HostOperation::kEnumerateInstances, className);
  return fInstances[className];
}

const std::string& ModelHost::Property(const ModelInstance& instance, const std::string& name) {
  Call(HostOperation::kGetProperty, name);
  const auto found = instance.properties.find(name);
  if (found == instance.properties.end()) throw ModelHostError{"CIM_ERR_NO_SUCH_PROPERTY"};
  return found->second;
}

std::string ModelHost::ReadText(const ModelInstance& instance, const std::string& name) {
  const std::string& text = Property(instance, name);
  Call(HostOperation::kGetPropertyText, name);
  return text;
}

unsigned short ModelHost::ReadNumber(const ModelInstance& instance, const std::string& name) {
  const std::string& text = Property(instance, name);
  Call(HostOperation::kGetPropertyValue, name);
  Call(HostOperation::kConvertToNumber);
  return static_cast<unsigned short>(std::stoul(text));
}

void ModelHost::InsertReference(Properties& properties, const std::string& name,
                                const ModelInstance& instance) {
  Call(HostOperation::kGetObjectPath, instance.className);
  Call(HostOperation::kMakeReferenceValue, instance.path);
  Insert(properties, name, instance.path);
}

bool ModelHost::FileExists(const std::string& path) {
  Call(HostOperation::kFileExists, path);
  fOutcome.machineCalls.push_back("exists " + path);
  return path == kProcDeviceFile ? fScenario.HasProcFile(fIsMounted) : fScenario.HasDebugfsFile();
}

std::string ModelHost::CaptureFile(const std::string& path) {
  Call(HostOperation::kCaptureFile, path);
  fOutcome.machineCalls.push_back("capture " + path);
  return fScenario.deviceList;
}

std::string ModelHost::SpawnListCommand() {
  Call(HostOperation::kSpawnProcess, kListCommand);
  fOutcome.machineCalls.push_back(std::string("spawn ") + kListCommand + " 300");
  return fScenario.CommandOutput();
}

void ModelHost::RunSystemCommand(const std::string& command) {
  OwnStep();
  fOutcome.machineCalls.push_back("system " + command);
  if (command == kMountCommand) fIsMounted = true;
}

Outcome ModelHost::TakeOutcome(const std::string& leaving) {
  for (const auto& [className, committed] : fInstances) {
    for (const ModelInstancePointer& instance : committed) {
      fOutcome.instances[className].push_back(instance->properties);
    }
  }
  fOutcome.leaving = leaving;
  return std::move(fOutcome);
}

}  // namespace usbinfo_test
