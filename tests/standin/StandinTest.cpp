#include "tests/standin/StandinTest.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "host/ICIMProperty.h"
#include "host/TQSVException.h"
#include "standin/Host.h"
#include "standin/ValueView.h"

using NKESTA20::ICIMInstance;
using NKESTA20::TCIMValue;

namespace usbinfo_test {

std::string StatusOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const NKESTA20::TQSVException& error) {
    return error.what();
  }
  return "nothing thrown";
}

boost::shared_ptr<ICIMInstance> MakeEntity(const std::string& className, const std::string& deviceId) {
  const auto instance = ClassOf(className)->CreateInstance({});
  instance->SetProperty("CreationClassName", TCIMValue(className), {});
  instance->SetProperty("DeviceID", TCIMValue(deviceId), {});
  instance->SetProperty("SystemCreationClassName", TCIMValue("KALDO_ComputerSystem"), {});
  instance->SetProperty("SystemName", TCIMValue("host"), {});
  return instance;
}

boost::shared_ptr<ICIMInstance> CommitEntity(const std::string& className, const std::string& deviceId) {
  const auto instance = MakeEntity(className, deviceId);
  instance->Commit({});
  return instance;
}

boost::shared_ptr<standin::CimClass> ClassOf(const std::string& className) {
  return standin::Host::Instance().Cimv2()->ClassForRequest(className);
}

std::vector<std::string> DeviceIds(const std::string& className) {
  std::vector<std::string> ids;
  for (const auto& instance : ClassOf(className)->Instances()) {
    ids.push_back(standin::TextOf(*instance->Find("DeviceID")));
  }
  return ids;
}

std::string PropertyText(ICIMInstance& instance, const std::string& name) {
  return instance.GetProperty(name, {})->GetValueAsText();
}

TCIMValue MakeArray(const std::vector<std::string>& texts) {
  std::vector<TCIMValue> elements;
  for (const std::string& text : texts) elements.emplace_back(text);
  return TCIMValue(TCIMValue::TCIMType::kStringArray, static_cast<unsigned int>(elements.size()), elements);
}

}  // namespace usbinfo_test
