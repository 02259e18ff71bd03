// The provider of KALDO_USBPortOnHub: links each port that the host holds to the hub that carries it. It
// works on the host's instances alone, so hubs and ports must have been committed before.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "association/HostInstances.h"
#include "provider/TUsb.h"

class TUsbPortHubAsso : public TUsb {
 public:
  explicit TUsbPortHubAsso(boost::shared_ptr<NKESTA20::ICIMClass> cimClass);
  TUsbPortHubAsso(boost::shared_ptr<NKESTA20::ICIMClass> cimClass,
                  NKESTA20::TPluginManagerProvider* provider);
  ~TUsbPortHubAsso() override;

  using TUsb::GetCIMInstances;
  /// Makes an association per linked port; true if at least one was made.
  bool GetCIMInstances(std::string className) override;

  /// The links, in the order of the ports: at most one per port, to the first hub with its hub's name and
  /// depth. Empty, with a status line, when the host does not supply the instances.
  std::vector<NKESTA20::PropertyMap> MakePortHubAssociation();

 private:
  bool FindInstances(InstanceList& hubs, InstanceList& ports);
  void LinkPort(const boost::shared_ptr<NKESTA20::ICIMInstance>& port, const InstanceList& hubs,
                std::vector<NKESTA20::PropertyMap>& links);
};
