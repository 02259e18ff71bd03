// The host as the model of a run sees it: every call counted, the fault thrown when its turn comes, log lines
// and instances kept as plain texts. Nothing of the stand-in or of the plug-in is used.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Fault.h"
#include "tests/model/Outcome.h"
#include "tests/model/Scenario.h"

namespace usbinfo_test {

/// The exceptions of the modelled host: its own, with the status text, and everything else.
struct ModelHostError {
  std::string status;
};
struct ModelOtherError {
  FaultKind kind;
};

struct ModelInstance {
  std::string className;
  Properties properties;
  /// The object path as text; known once the instance is committed.
  std::string path;
};
using ModelInstancePointer = std::shared_ptr<ModelInstance>;

class ModelHost {
 public:
  ModelHost(const Scenario& scenario, const std::optional<Fault>& fault, bool keepsCalls);

  /// One host call. Throws the fault if this is its call.
  void Call(standin::HostOperation operation, const std::string& subject = std::string());
  /// Before each step that the plug-in takes on its own and that may fail or leaves a trace.
  void OwnStep();

  /// The calls that one line of the core logger takes.
  void Log(int severity, const std::string& text);
  /// A host exception's text, which its what() asks the host for; empty when the host fails that too.
  std::string What(const ModelHostError& error);

  /// The calls that make a value; they give its text.
  std::string MakeText(const std::string& text);
  std::string MakeNumber(unsigned long number);
  /// An array-of-strings value of that single text.
  std::string MakeTextArray(const std::string& text);
  /// Inserts a value that is already made, unless the name is taken.
  void Insert(Properties& properties, const std::string& name, const std::string& value);
  /// Inserts a text by way of a value that turns back into text, unless it is empty or the name is taken.
  void InsertByWayOfText(Properties& properties, const std::string& name, const std::string& text);

  void Commit(const ModelInstancePointer& instance);
  /// The committed instances of a class, after the calls that enumerate them.
  std::vector<ModelInstancePointer> Enumerate(const std::string& className);
  /// A property read back as text or as a number; throw ModelHostError where the instance lacks it.
  std::string ReadText(const ModelInstance& instance, const std::string& name);
  unsigned short ReadNumber(const ModelInstance& instance, const std::string& name);
  /// The calls that make a reference to an instance and put it under `name`.
  void InsertReference(Properties& properties, const std::string& name, const ModelInstance& instance);

  bool FileExists(const std::string& path);
  std::string CaptureFile(const std::string& path);
  std::string SpawnListCommand();
  void RunSystemCommand(const std::string& command);

  /// What the run left; to be asked for once, at its end.
  Outcome TakeOutcome(const std::string& leaving);

 private:
  void ThrowIf(Fault::Moment moment, std::size_t call);
  const std::string& Property(const ModelInstance& instance, const std::string& name);

  const Scenario& fScenario;
  std::optional<Fault> fFault;
  bool fIsMounted = false;
  Outcome fOutcome;
  std::map<std::string, std::vector<ModelInstancePointer>> fInstances;
};

}  // namespace usbinfo_test
