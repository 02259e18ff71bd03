#include "provider/TUsb.h"

#include "host/TAddToVectorCallback.h"
#include "host/TQSVException.h"
#include "host/TRootObject.h"
#include "provider/ValueConversion.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::ILogger;
using NKESTA20::PropertyMap;
using NKESTA20::TAddToVectorCallback;
using NKESTA20::TCIMReference;
using NKESTA20::TPluginManagerProvider;
using NKESTA20::TQSVException;
using NKESTA20::TRootObject;

TUsb::TUsb(boost::shared_ptr<ICIMClass> cls) : fClass(cls.get()) {}

TUsb::TUsb(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle)
    : fClass(cls.get()), fInfoHandle(handle) {}

ICIMClass* TUsb::GetCIMClass() {
  return fClass;
}

TUsb::~TUsb() = default;

bool TUsb::GetCIMInstances() {
  const std::string name = GetCIMClass()->GetClassName(PropertyMap());
  return GetCIMInstances(name);
}

void TUsb::CollectData() {}

TPluginManagerProvider* TUsb::GetInfoHandle() {
  return fInfoHandle;
}

void TUsb::Write(const std::string& text, ILogger::EQSVLogSeverity severity) const {
  if (fInfoHandle == nullptr) return;
  if (text.empty()) return;
  TRootObject::GetCoreLogger()->Write(severity, text);
}

void TUsb::WriteError(const std::string& text) const {
  Write(text, ILogger::kError);
}

void TUsb::WriteWarning(const std::string& text) const {
  Write(text, ILogger::kWarning);
}

void TUsb::WriteStatus(const std::string& text) const {
  Write(text, ILogger::kStatus);
}

void TUsb::WriteDebug(const std::string& text) const {
  Write(text, ILogger::kDebug);
}

void TUsb::WriteVerbose(const std::string& text) const {
  Write(text, ILogger::kVerbose);
}

bool TUsb::IsDuplicateInstance(ICIMInstance* instance) {
  const boost::shared_ptr<ICIMClass> cls = instance->GetClass(PropertyMap());
  const TCIMReference path = instance->GetObjectPath(PropertyMap());
  std::vector<boost::shared_ptr<ICIMInstance>> existing;
  cls->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(existing), 0, PropertyMap());
  for (const boost::shared_ptr<ICIMInstance>& candidate : existing) {
    if (candidate->GetObjectPath(PropertyMap()) == path) return true;
  }
  return false;
}

ICIMInstance* TUsb::GenerateCIMInstance(PropertyMap properties, std::string className) {
  WriteVerbose("TUsb::generateCIMInstance - Generating CIM instance for class " + className + ".");
  const boost::shared_ptr<ICIMInstance> instance = GetCIMClass()->CreateInstance(PropertyMap());
  for (const auto& [name, value] : properties) {
    WriteDebug("Setting property : " + name);
    instance->SetProperty(name, value, PropertyMap());
  }
  if (GetCIMClass()->GetClassName(PropertyMap()).compare(className) == 0) instance->Commit(PropertyMap());
  return instance.get();
}

bool TUsb::GenerateInstances(const std::vector<PropertyMap>& maps, const std::string& className,
                             const std::string& errorPrefix) {
  bool generated = false;
  for (const PropertyMap& map : maps) {
    try {
      GenerateCIMInstance(map, className);
      generated = true;
    } catch (TQSVException& error) {
      WriteStatus(errorPrefix + className + " Error Code: " + dataToString<const char*>(error.what()));
    }
  }
  return generated;
}
