// USB devices that QEMU lacks, for the test on a real kernel: virtual-devices DEVICE...
//
// Attaches each DEVICE to a port of the kernel's virtual host controller (vhci-hcd), which passes requests on
// by the protocol of USB/IP, and answers them until it is killed. A "hub" is a high-speed hub with a
// transaction translator for each of its four ports; a "device" does nothing. What is plugged into a hub's
// port of some number answers through the controller's port of that number, since the controller passes on
// neither address nor route; hubs say that their second port is in use.
#include <endian.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "system/FileDescriptor.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Documentation/usb/usbip_protocol.rst: all numbers are big-endian.
struct Header {
  std::uint32_t command;
  std::uint32_t sequence;
  std::uint32_t device;
  std::uint32_t direction;
  std::uint32_t endpoint;
  std::array<std::uint32_t, 5> numbers;
  std::array<std::uint8_t, 8> setup;
};
static_assert(sizeof(Header) == 48);

constexpr std::uint32_t kSubmit = 1;
constexpr std::uint32_t kUnlink = 2;
constexpr std::uint32_t kSubmitted = 3;
constexpr std::uint32_t kUnlinked = 4;
constexpr std::uint32_t kIn = 1;

constexpr unsigned kHighSpeed = 3;
constexpr unsigned kConnectionReset = 104;
constexpr unsigned kBrokenPipe = 32;

// Requests as type and request, from chapters 9 and 11 of USB 2.0.
constexpr unsigned kGetDescriptor = 0x8006;
constexpr unsigned kGetHubDescriptor = 0xA006;
constexpr unsigned kGetDeviceStatus = 0x8000;
constexpr unsigned kGetPortStatus = 0xA300;
constexpr unsigned kGetHubStatus = 0xA000;
constexpr unsigned kGetConfiguration = 0x8008;

/// A port that is powered and, if in use, connected, enabled and of high speed.
constexpr std::uint8_t kInUse = 0x03;
constexpr std::uint8_t kPoweredHighSpeed = 0x05;
constexpr std::uint8_t kPowered = 0x01;
constexpr unsigned kPortInUse = 2;

struct Descriptors {
  Bytes device;
  Bytes configuration;
  Bytes hub;
  std::vector<std::string> strings;
};

Descriptors HubDescriptors() {
  return {.device = {18, 1, 0x00, 0x02, 9, 0, 2, 64, 0x6b, 0x1d, 0x06, 0x01, 0x00, 0x01, 1, 2, 3, 1},
          .configuration = {9, 2, 41,   0, 1, 1, 0,  0xe0, 50,  //
                            9, 4, 0,    0, 1, 9, 0,  1,    0,   //
                            7, 5, 0x81, 3, 1, 0, 12,            //
                            9, 4, 0,    1, 1, 9, 0,  2,    0,   //
                            7, 5, 0x81, 3, 1, 0, 12},
          .hub = {9, 0x29, 4, 0x09, 0x00, 0, 0, 0x00, 0xff},
          .strings = {"Makers", "Hub of a dock", "H-1"}};
}

Descriptors DeviceDescriptors() {
  return {.device = {18, 1, 0x00, 0x02, 0xff, 0, 0, 64, 0x6b, 0x1d, 0x07, 0x01, 0x00, 0x01, 1, 2, 3, 1},
          .configuration = {9, 2, 25,   0, 1, 1,    0, 0x80, 50,  //
                            9, 4, 0,    0, 1, 0xff, 0, 0,    0,   //
                            7, 5, 0x81, 2, 0, 2,    0},
          .hub = {},
          .strings = {"Makers", "Behind a hub", "D-1"}};
}

Bytes StringDescriptor(const std::vector<std::string>& strings, unsigned index) {
  if (index == 0) return {4, 3, 0x09, 0x04};
  if (index > strings.size()) return {};
  const std::string& text = strings[index - 1];
  Bytes bytes = {static_cast<std::uint8_t>(2 + 2 * text.size()), 3};
  for (const char character : text) {
    bytes.push_back(static_cast<std::uint8_t>(character));
    bytes.push_back(0);
  }
  return bytes;
}

/// A device at the far end of a socket.
class VirtualDevice {
 public:
  VirtualDevice(int socket, Descriptors descriptors)
      : fSocket(socket), fDescriptors(std::move(descriptors)) {}

  /// Answers requests until the socket is closed.
  void Serve() {
    Header header{};
    while (::recv(fSocket, &header, sizeof header, MSG_WAITALL) == sizeof header) {
      if (be32toh(header.command) == kUnlink) {
        AnswerUnlink(header);
      } else {
        AnswerSubmit(header);
      }
    }
  }

 private:
  void Send(const Header& header, const Bytes& data) const {
    std::string packet(sizeof header, '\0');
    std::memcpy(packet.data(), &header, sizeof header);
    packet.append(data.begin(), data.end());
    sys::WriteAll(fSocket, packet);
  }

  void AnswerUnlink(Header header) const {
    header.command = htobe32(kUnlinked);
    header.numbers = {htobe32(-kConnectionReset)};
    header.setup = {};
    Send(header, {});
  }

  void AnswerSubmit(Header header) const {
    const std::uint32_t length = be32toh(header.numbers[1]);
    const bool isIn = be32toh(header.direction) == kIn;
    Bytes sent(isIn ? 0 : length);
    if (!sent.empty()) ::recv(fSocket, sent.data(), sent.size(), MSG_WAITALL);
    // No interrupt ever comes: the request stays unanswered until it is taken back.
    if (header.endpoint != 0) return;
    Bytes data = isIn ? Answer(header.setup) : Bytes();
    const bool isRefused = isIn && data.empty();
    data.resize(std::min<std::size_t>(data.size(), length));
    header.command = htobe32(kSubmitted);
    header.numbers = {htobe32(isRefused ? -kBrokenPipe : 0),
                      htobe32(static_cast<std::uint32_t>(isIn ? data.size() : length))};
    header.setup = {};
    Send(header, data);
  }

  Bytes Answer(const std::array<std::uint8_t, 8>& setup) const {
    const unsigned port = setup[4];
    switch (setup[0] << 8 | setup[1]) {
      case kGetDescriptor:
        return Descriptor(setup[3], setup[2]);
      case kGetHubDescriptor:
        return fDescriptors.hub;
      case kGetPortStatus:
        return port == kPortInUse ? Bytes{kInUse, kPoweredHighSpeed, 0, 0} : Bytes{0, kPowered, 0, 0};
      case kGetHubStatus:
        return {0, 0, 0, 0};
      case kGetDeviceStatus:
        return {1, 0};
      case kGetConfiguration:
        return {1};
      default:
        return {};
    }
  }

  Bytes Descriptor(unsigned type, unsigned index) const {
    constexpr unsigned kDevice = 1;
    constexpr unsigned kConfiguration = 2;
    constexpr unsigned kString = 3;
    if (type == kDevice) return fDescriptors.device;
    if (type == kConfiguration && index == 0) return fDescriptors.configuration;
    if (type == kString) return StringDescriptor(fDescriptors.strings, index);
    return {};
  }

  int fSocket;
  Descriptors fDescriptors;
};

/// Plugs a device into that port of the controller; gives the socket on which it has to answer.
int Attach(unsigned port) {
  std::array<int, 2> sockets{};
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets.data()) != 0) return -1;
  std::ofstream attach("/sys/devices/platform/vhci_hcd.0/attach");
  attach << port << ' ' << sockets[0] << ' ' << port + 1 << ' ' << kHighSpeed << std::flush;
  return attach ? sockets[1] : -1;
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::thread> threads;
  unsigned port = 0;
  for (const char* kind : std::span(arguments, static_cast<std::size_t>(count)).subspan(1)) {
    const int socket = Attach(port++);
    if (socket < 0) {
      std::perror(kind);
      return 1;
    }
    const bool isHub = std::string_view(kind) == "hub";
    threads.emplace_back(
        [socket, isHub] { VirtualDevice(socket, isHub ? HubDescriptors() : DeviceDescriptors()).Serve(); });
  }
  for (std::thread& thread : threads) thread.join();
}
