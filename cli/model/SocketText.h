// How the nodes of a picture of sockets are described to people. Any bytes may stand in these texts, since
// devices choose their strings.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/model/Sockets.h"

namespace cli {

class UsbIds;

/// What a hub or device sends of itself: the kernel's strings where they are known, else those that the
/// plug-in has found. Empty for none.
std::string ProductOf(const SocketNode& node);
std::string ManufacturerOf(const SocketNode& node);
std::string SerialOf(const SocketNode& node);

/// In the order of AllKinds, each once; none where nothing is known.
std::vector<std::string> KindsOf(const SocketNode& node);
/// "keyboard, mouse"; empty where nothing is known.
std::string KindOf(const SocketNode& node);
/// "usbhid, snd-usb-audio": of the interfaces in use, each once.
std::string DriversOf(const SocketNode& node);
/// "480 Mbit/s": of a socket and a hub, that of the faster half; a controller has none.
std::string SpeedOf(const Sockets& sockets, const SocketNode& node);

/// Where a node is: the kernel's name, "1-3.1"; where it is not known, "Bus 01", "Port 00" or at the top
/// "Bus 01, device 2".
std::string PlaceOf(const SocketNode& node, bool isTop);
/// "1-2.3 to 1-2.8" for a row that stands for several sockets.
std::string PlaceOf(const Sockets& sockets, const SocketRow& row);

/// "free", "in use", "not used" or "unknown".
const char* NameOf(SocketState state);
/// What a node is called: the product of a hub or device, "(no name)" where it sends none, the description of
/// a controller, the state of a socket.
std::string NameOf(const SocketNode& node);
/// What a row shows: the name, the number of a hub's sockets but for a controller's, and whether the socket
/// is hard-wired.
std::string DescribeRow(const Sockets& sockets, const SocketNode& node);
/// How many a hub has, whether or not they are all in the inventory.
std::uint64_t NumberOfSockets(const Sockets& sockets, const SocketNode& hub);
/// "8 sockets"; "8 ports" where peers are not known.
std::string SocketsOf(const Sockets& sockets, const SocketNode& hub);

/// Of a hub with two halves, the one on the bus for USB 3: "2-3: 05e3:0626, 5 Gbit/s, device number 4". Empty
/// for what has one half.
std::string OtherHalfOf(const SocketNode& node);

/// What is known of a hub or device besides its name, a line each. With `names` also its listed name.
std::vector<std::string> DetailsOf(const SocketNode& node, const UsbIds* names);

/// "3 controllers, 4 hubs, 20 sockets (13 free), 6 devices"; "2 of 20 sockets" where a selection left some
/// out; "ports" where peers are not known.
std::string CountsOf(const Sockets& sockets);
/// The same behind the machine's name: "testhost: 3 controllers, ...".
std::string Summary(const Sockets& sockets);

}  // namespace cli
