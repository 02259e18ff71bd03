// GoogleMock versions of the host's interfaces, for tests in which a single call must fail or its arguments
// matter.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "host/ICIMClass.h"
#include "host/ICIMInstance.h"
#include "host/ICIMNamespace.h"
#include "host/ICIMProperty.h"

namespace usbinfo_test {

class MockClass : public NKESTA20::ICIMClass {
 public:
  MOCK_METHOD(const std::string&, GetClassName, (NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(boost::shared_ptr<NKESTA20::ICIMNamespace>, GetNamespace, (NKESTA20::PropertyMap context),
              (override));
  MOCK_METHOD(boost::shared_ptr<NKESTA20::ICIMInstance>, CreateInstance, (NKESTA20::PropertyMap context),
              (override));
  MOCK_METHOD(void, EnumerateInstances, (InstanceCallback callback, int flags, NKESTA20::PropertyMap context),
              (override));
};

class MockInstance : public NKESTA20::ICIMInstance {
 public:
  MOCK_METHOD(void, Commit, (NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(NKESTA20::TCIMReference, GetObjectPath, (NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(boost::shared_ptr<NKESTA20::ICIMClass>, GetClass, (NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(boost::shared_ptr<NKESTA20::ICIMProperty>, GetProperty,
              (const std::string& name, NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(void, SetProperty,
              (const std::string& name, const NKESTA20::TCIMValue& value, NKESTA20::PropertyMap context),
              (override));
};

class MockProperty : public NKESTA20::ICIMProperty {
 public:
  MOCK_METHOD(const NKESTA20::TCIMValue&, GetValue, (NKESTA20::PropertyMap context), (override));
  MOCK_METHOD(std::string, GetValueAsText, (), (override));
};

class MockNamespace : public NKESTA20::ICIMNamespace {
 public:
  MOCK_METHOD(boost::shared_ptr<NKESTA20::ICIMClass>, GetClass,
              (const std::string& className, NKESTA20::PropertyMap context), (override));
};

}  // namespace usbinfo_test
