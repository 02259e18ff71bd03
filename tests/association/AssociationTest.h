// The fixture of the association providers' tests: hubs, ports and devices committed to a fresh host by hand,
// in the order of the calls, and what the associations between them must look like.
#pragma once

#include <boost/make_shared.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/TPluginManagerProvider.h"
#include "tests/inventory/HostFailure.h"
#include "tests/inventory/LogLines.h"
#include "tests/inventory/PropertyView.h"
#include "tests/support/HostMocks.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

/// A class that passes only its first instance to the callback when it is enumerated, and the others later,
/// since it keeps the callback, as a host may.
class LateClass : public NKESTA20::ICIMClass {
 public:
  explicit LateClass(const boost::shared_ptr<standin::CimClass>& cls) : fClass(cls) {}

  const std::string& GetClassName(NKESTA20::PropertyMap) override { return fClass->Name(); }
  boost::shared_ptr<NKESTA20::ICIMNamespace> GetNamespace(NKESTA20::PropertyMap context) override {
    return fClass->GetNamespace(context);
  }
  boost::shared_ptr<NKESTA20::ICIMInstance> CreateInstance(NKESTA20::PropertyMap context) override {
    return fClass->CreateInstance(context);
  }
  void EnumerateInstances(InstanceCallback callback, int, NKESTA20::PropertyMap) override {
    fCallback = callback;
    fCallback(fClass->Instances().front());
  }

  void HandOutTheRest() {
    for (std::size_t index = 1; index < fClass->Instances().size(); ++index) {
      fCallback(fClass->Instances()[index]);
    }
  }

 private:
  boost::shared_ptr<standin::CimClass> fClass;
  InstanceCallback fCallback;
};

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

  /// A provider whose class leads to a namespace with these two classes, the first of which is late.
  template <typename Provider>
  std::unique_ptr<Provider> MakeProvider(const boost::shared_ptr<LateClass>& late,
                                         const boost::shared_ptr<standin::CimClass>& other) {
    const auto ns = boost::make_shared<testing::NiceMock<MockNamespace>>();
    ON_CALL(*ns, GetClass(late->GetClassName(PropertyMap()), testing::_))
        .WillByDefault(testing::Return(late));
    ON_CALL(*ns, GetClass(other->Name(), testing::_)).WillByDefault(testing::Return(other));
    fAssociation = boost::make_shared<testing::NiceMock<MockClass>>();
    ON_CALL(*fAssociation, GetNamespace).WillByDefault(testing::Return(ns));
    return std::make_unique<Provider>(fAssociation, &handle);
  }

  /// Has `late` pass on the rest when a property of this name is read for the `turn`-th time.
  static void HandOutTheRestAt(const std::string& property, int turn,
                               const boost::shared_ptr<LateClass>& late) {
    standin::HostSeam::SetObserver([=, seen = 0](const standin::HostCall& call) mutable {
      if (call.operation != standin::HostOperation::kGetPropertyText || call.subject != property) return;
      if (++seen == turn) late->HandOutTheRest();
    });
  }

  NKESTA20::TPluginManagerProvider handle;

 private:
  boost::shared_ptr<testing::NiceMock<MockClass>> fAssociation;
};

}  // namespace usbinfo_test
