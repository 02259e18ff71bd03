// The picture of sockets: of recorded machines, whose peers the kernel has told, and of machines made by hand
// that show one rule each.
#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/TreeFormat.h"
#include "cli/model/FromKernel.h"
#include "cli/model/Selection.h"
#include "cli/model/SocketText.h"
#include "cli/model/Sockets.h"
#include "kernel/DeviceListWriter.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/kernel/RecordedMachine.h"

using cli::ClassId;
using cli::Inventory;
using cli::SocketNode;
using cli::Sockets;
using cli::SocketState;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

class RecordedSocketsTest : public CliTest {
 protected:
  /// As the command collects it from that machine's sysfs.
  Inventory Read(const std::string& name) {
    host.Reset();
    const kernel::Topology topology = UnpackedSysfs(ReadRecord(name)).Read();
    Collect(kernel::WriteDeviceList(topology));
    Inventory inventory = Collected();
    inventory.SetKernel(cli::FromKernel(topology, inventory));
    return inventory;
  }
};

TEST_F(RecordedSocketsTest, X) {
  for (const auto& m : RecordedMachines()) {
    Inventory i = Read(m);
    const CharacterSet characters("C.UTF-8");
    printf("%s\n%s\n", m.c_str(), cli::RenderTree(i, {false}).c_str());
  }
}

}  // namespace
}  // namespace usbinfo_test
