// The model of the inventory: from the machine's device list to four lists of property maps, built once, in
// the very order of host calls that the plug-in has to keep. A fault ends the build and leaves what was filed
// before it.
#pragma once

#include <string>
#include <vector>

#include "tests/faults/ModelRecord.h"
#include "tests/model/ModelHost.h"

namespace usbinfo_test {

class ModelInventory {
 public:
  ModelInventory(ModelHost& host, const ModelList& list) : fHost(host), fList(list) {}

  /// Builds the lists unless that was tried before. `className` is the class whose provider collects.
  void Collect(const std::string& className);
  const std::vector<Properties>& EntriesOf(const std::string& className) { return fEntries[className]; }

 private:
  void Debug(const std::string& text) { fHost.Log(kDebug, text); }
  void File(const std::string& className, const Properties& properties);

  bool AcquireList();
  std::string ReadFiles();
  bool RunListCommand();
  void Populate();
  void FillController(const ModelRecord& record);
  void FillPort(const ModelRecord& hub, unsigned int index);
  void FillPorts(const ModelRecord& hub);
  void FillDevice(const ModelRecord& record);
  void Identify(const ModelRecord& record, Properties& properties);
  void Describe(const ModelRecord& record, Properties& properties);
  void FinishHub(const ModelRecord& record, Properties& properties);
  void FinishDevice(const ModelRecord& record, Properties& properties);
  void AddKeys(const std::string& entryClass, Properties& properties);

  void InsertText(Properties& properties, const std::string& name, const std::string& text);
  void InsertNumber(Properties& properties, const std::string& name, unsigned long number);

  ModelHost& fHost;
  const ModelList& fList;
  bool fIsTried = false;
  std::string fCollector;
  std::map<std::string, std::vector<Properties>> fEntries;
};

}  // namespace usbinfo_test
