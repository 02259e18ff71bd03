// The model of a whole run: what a host that asks for classes sees of the plug-in, with or without a fault.
// Written from the rules of what is logged, skipped and served, and sharing no code with the plug-in.
#pragma once

#include <optional>
#include <string>

#include "tests/model/ModelAssociations.h"
#include "tests/model/ModelHost.h"
#include "tests/model/ModelInventory.h"

namespace usbinfo_test {

class ModelPlugin {
 public:
  ModelPlugin(ModelHost& host, const ListValues& list)
      : fHost(host), fInventory(host, list), fAssociations(host) {}

  /// Init, the request, DeInit; what leaves it is thrown.
  void Run(const std::vector<std::string>& request);

 private:
  void GetData(const std::vector<std::string>& request);
  void DeInit();
  void Serve(const std::string& className);
  bool MakeInstances(const std::string& className);
  bool GenerateAll(const std::vector<Properties>& entries, const std::string& className,
                   const std::string& errorLeadIn);
  void Generate(const Properties& entry, const std::string& className);

  ModelHost& fHost;
  ModelInventory fInventory;
  ModelAssociations fAssociations;
};

/// The outcome that a run of `scenario` must have.
Outcome RunModel(const Scenario& scenario, const ListValues& list, const std::optional<Fault>& fault,
                 bool keepsCalls = false);

}  // namespace usbinfo_test
