// The base of every provider: it holds the requested class, logs, and turns property maps into committed
// instances. The dispatcher owns a provider for the length of one class request and keeps the class alive;
// the provider itself owns nothing.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/ICIMClass.h"
#include "host/ICIMInstance.h"
#include "host/ILogger.h"
#include "host/PropertyMap.h"
#include "host/TPluginManagerProvider.h"

class TUsb {
 public:
  TUsb() = default;
  explicit TUsb(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  /// `handle` switches the provider's logging on; null keeps it silent.
  TUsb(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  TUsb(const TUsb&) = delete;
  TUsb& operator=(const TUsb&) = delete;

  // The order of the virtual operations is part of the contract.

  /// The requested class, not owned.
  virtual NKESTA20::ICIMClass* GetCIMClass();
  virtual ~TUsb();
  /// Makes the requested class's instances; true if at least one was made.
  virtual bool GetCIMInstances();
  /// The same for the class named; every provider implements it.
  virtual bool GetCIMInstances(std::string className) = 0;
  /// Collects the data that the instances are made from; does nothing here.
  virtual void CollectData();

  NKESTA20::TPluginManagerProvider* GetInfoHandle();

  /// Writes one line to the core logger, unless the handle is null or `text` is empty.
  void Write(const std::string& text, NKESTA20::ILogger::EQSVLogSeverity severity) const;
  void WriteError(const std::string& text) const;
  void WriteWarning(const std::string& text) const;
  void WriteStatus(const std::string& text) const;
  void WriteDebug(const std::string& text) const;
  void WriteVerbose(const std::string& text) const;

  /// True when the class of `instance` already holds an instance of the same object path.
  bool IsDuplicateInstance(NKESTA20::ICIMInstance* instance);

  /// Creates an instance, sets every property, and commits it if `className` is the class's own name.
  /// The result is not owned and lives only as long as the host keeps the instance.
  NKESTA20::ICIMInstance* GenerateCIMInstance(NKESTA20::PropertyMap properties, std::string className);

 protected:
  /// Generates an instance from each of `maps`; true if at least one was made. A host exception skips its own
  /// instance only and is logged in a status line that begins with `errorPrefix`.
  bool GenerateInstances(const std::vector<NKESTA20::PropertyMap>& maps, const std::string& className,
                         const std::string& errorPrefix);

 private:
  NKESTA20::ICIMClass* fClass = nullptr;
  NKESTA20::TPluginManagerProvider* fInfoHandle = nullptr;
};
