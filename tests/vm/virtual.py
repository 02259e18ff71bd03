"""The devices of VirtualDevices.cpp: a hub with a transaction translator for each port, as in most docks.

The list has its interface's second setting behind an endpoint line. One device is plugged into the hub, another one
next to it.
"""

import models
import topology

CONTROLLER = "vhci_hcd.0"
# What the program is started with: what is in the controller's ports from 1.
DEVICES = ("hub", "device")

_HUB = models.Codes(" 2.00", 0x1d6b, 0x0106, (models.HUB_CLASS, 0, 2), interface_class=models.HUB_CLASS)
_DEVICE = models.Codes(" 2.00", 0x1d6b, 0x0107, (0xff, 0, 0))


def buses(release):
    """The buses of the controller with all that is plugged in."""
    found = topology.controller_buses(CONTROLLER, models.VIRTUAL_CONTROLLER, {}, release)
    device = topology.strings("Makers", "Behind a hub", "D-1")
    found[0].devices += [
        topology.Device((1,), _HUB, models.HIGH, topology.strings("Makers", "Hub of a dock", "H-1"), 4),
        topology.Device((1, 2), _DEVICE, models.HIGH, device),
        topology.Device((2,), _DEVICE, models.HIGH, device),
    ]
    return found
