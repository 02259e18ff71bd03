"""The emulated machine: what is plugged in where.

This description is the truth of the test. qemu.py makes QEMU's command line of it, and topology.py the buses
that the kernel must find; neither knows anything else about the machine.
"""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class Controller:
    """A controller on the PCI bus; with a master, the companion for its ports behind the first so many."""

    name: str
    model: str
    address: str
    options: dict = field(default_factory=dict)
    master: str = ""
    first_port: int = 0

    @property
    def pci_address(self):
        """The address as the kernel spells it."""
        return f"0000:00:{self.address}"


@dataclass(frozen=True)
class Plug:
    """A device in a port, given as port numbers from 1, from the controller's down: "2.1"."""

    model: str
    controller: str
    port: str
    serial: str = ""
    options: dict = field(default_factory=dict)

    @property
    def name(self):
        """The device's identifier towards QEMU."""
        return f"plug-{self.controller}-{self.port}"


@dataclass(frozen=True)
class Machine:
    """All controllers and all that is plugged into them."""

    controllers: tuple
    plugs: tuple

    def controller(self, name):
        """The controller of that name."""
        return next(item for item in self.controllers if item.name == name)

    def changed(self, removed, added):
        """The machine with some plugs pulled out and others put in."""
        return Machine(self.controllers, tuple(plug for plug in self.plugs if plug not in removed) + added)


MACHINE = Machine(
    controllers=(
        # More than nine ports: their numbers have two digits, and names no longer sort as numbers do.
        Controller("xhci", "qemu-xhci", "03.0", {"p2": 12, "p3": 4}),
        Controller("xhci-empty", "qemu-xhci", "04.0", {"p2": 1, "p3": 1}),
        Controller("ehci", "usb-ehci", "05.0"),
        Controller("uhci", "piix3-usb-uhci", "06.0"),
        Controller("ohci", "pci-ohci", "07.0", {"num-ports": 5}),
        # What is too slow for this one shows up at its companions.
        Controller("ich9", "ich9-usb-ehci1", "1d.7", {"multifunction": True}),
        Controller("ich9-a", "ich9-usb-uhci1", "1d.0", {"multifunction": True}, "ich9", 0),
        Controller("ich9-b", "ich9-usb-uhci2", "1d.1", master="ich9", first_port=2),
    ),
    plugs=(
        Plug("usb-hub", "xhci", "2", serial="HUB 0001"),
        Plug("usb-kbd", "xhci", "2.1", serial="KBD-0001"),
        Plug("usb-hub", "xhci", "2.3"),
        Plug("usb-mouse", "xhci", "2.3.8"),
        Plug("usb-audio", "xhci", "2.4"),
        Plug("usb-storage", "xhci", "1", serial="DISK0001"),
        Plug("usb-uas", "xhci", "3"),
        Plug("usb-tablet", "xhci", "11", serial="TAB-0011"),
        Plug("usb-storage", "ehci", "5", serial="Port 5, \"quoted\""),
        Plug("usb-serial", "uhci", "1", serial="SER=1", options={"always-plugged": True}),
        Plug("usb-hub", "ohci", "4"),
        Plug("usb-wacom-tablet", "ohci", "4.7"),
        Plug("usb-net", "ohci", "4.8", serial="NET-0048"),
        Plug("usb-kbd", "ich9", "1"),
        Plug("usb-hub", "ich9", "4"),
        Plug("usb-mouse", "ich9", "4.2", options={"usb_version": 1}),
    ),
)

# What is done to the machine while it runs.
REMOVED = (MACHINE.plugs[1], MACHINE.plugs[5])
ADDED = (
    Plug("usb-hub", "xhci", "2.5"),
    Plug("usb-tablet", "xhci", "2.5.1", serial="ADDED-1"),
    Plug("usb-storage", "ehci", "1", serial="ADDED-2"),
)
CHANGED_MACHINE = MACHINE.changed(REMOVED, ADDED)

# A hub can be at most this deep.
NESTED = (*(Plug("usb-hub", "xhci", ".".join(["5"] + ["1"] * depth)) for depth in range(5)),
          Plug("usb-mouse", "xhci", "5.1.1.1.1.8"))
NESTED_MACHINE = CHANGED_MACHINE.changed((), NESTED)
