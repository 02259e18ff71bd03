// The model of the inventory: from the machine's device list to four lists of property maps, built once, in
// the very order of host calls that the plug-in has to keep. A fault ends the build and leaves what was filed
// before it.
#pragma once

#include <string>
#include <vector>

#include "tests/model/ModelHost.h"
#include "tests/model/RecordValues.h"

namespace usbinfo_test {

class ModelInventory {
 public:
  ModelInventory(ModelHost& host, const ListValues& list) : fHost(host), fList(list) {}

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
  void FillController(const RecordValues& record);
  void FillPort(const RecordValues& hub, unsigned int index);
  void FillPorts(const RecordValues& hub);
  void FillDevice(const RecordValues& record);
  void Identify(const RecordValues& record, Properties& properties);
  void Describe(const RecordValues& record, Properties& properties);
  void FinishHub(const RecordValues& record, Properties& properties);
  void FinishDevice(const RecordValues& record, Properties& properties);
  void AddKeys(const std::string& entryClass, Properties& properties);

  void InsertText(Properties& properties, const std::string& name, const std::string& text);
  void InsertNumber(Properties& properties, const std::string& name, unsigned long number);

  ModelHost& fHost;
  const ListValues& fList;
  bool fIsTried = false;
  std::string fCollector;
  std::map<std::string, std::vector<Properties>> fEntries;
};

}  // namespace usbinfo_test
