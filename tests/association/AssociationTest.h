// The fixture of the association providers' tests: hubs, ports and devices committed to a fresh host by hand,
// in the order of the calls, and what the associations between them must look like.
#pragma once

#include <string>
#include <vector>

#include "host/TPluginManagerProvider.h"
#include "tests/inventory/HostFailure.h"
#include "tests/inventory/LogLines.h"
#include "tests/inventory/PropertyView.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

class AssociationTest : public HostTest {
 protected:
  using PropertyMap = NKESTA20::PropertyMap;
  using TCIMValue = NKESTA20::TCIMValue;
  using Links = std::vector<Properties>;

  static TCIMValue Number(unsigned short number) { return TCIMValue(number); }

  boost::shared_ptr<standin::CimClass> ClassNamed(const std::string& name) {
    return host.Cimv2()->ClassForRequest(name);
  }

  /// Commits an instance with these properties besides its keys; the result is its path.
  std::string Commit(const std::string& className, const std::string& deviceId, PropertyMap properties) {
    properties.emplace("CreationClassName", TCIMValue(className));
    properties.emplace("DeviceID", TCIMValue(deviceId));
    properties.emplace("SystemCreationClassName", TCIMValue("system"));
    properties.emplace("SystemName", TCIMValue("box"));
    const auto instance = ClassNamed(className)->CreateInstance(PropertyMap());
    for (const auto& [name, value] : properties) instance->SetProperty(name, value, PropertyMap());
    instance->Commit(PropertyMap());
    return standin::TextOf(instance->GetObjectPath(PropertyMap()));
  }

  static Properties Link(const std::string& antecedent, const std::string& dependent) {
    return {{"Antecedent", Reference(antecedent)}, {"Dependent", Reference(dependent)}};
  }

  /// The committed instances of `className`, in order.
  Links Committed(const std::string& className) {
    Links links;
    for (const auto& instance : ClassNamed(className)->Instances()) links.push_back(Describe(*instance));
    return links;
  }

  /// The lines of one association being made.
  static Log MakingOf(const std::string& className) {
    return {Verbose("TUsb::generateCIMInstance - Generating CIM instance for class " + className + "."),
            Debug("Setting property : Antecedent"), Debug("Setting property : Dependent")};
  }

  NKESTA20::TPluginManagerProvider handle;
};

}  // namespace usbinfo_test
