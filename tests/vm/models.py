"""What the parts of the emulated machine say of themselves.

The catalogue of QEMU's USB devices and of the root hubs that the kernel makes for controllers: identifiers,
strings, and the speeds that each can run at. Constants only; machine.py says which of them are plugged in
where.
"""

from dataclasses import dataclass

FULL, HIGH, SUPER = "12", "480", "5000"


@dataclass(frozen=True)
class Codes:
    """The numbers of a device descriptor; the version is the text in the kernel's list."""

    version: str
    vendor: int
    product: int
    device_class: tuple = (0, 0, 0)
    configs: int = 1
    interface_class: int = 0xff


@dataclass(frozen=True)
class Model:
    """One of QEMU's devices: its codes by speed, its strings, the backend option that it must have."""

    product: str
    serial: str
    codes: dict
    manufacturer: str = "QEMU"
    ports: int = 0
    backend: str = ""


@dataclass(frozen=True)
class RootHub:
    """The root hub of a controller, as the kernel describes it."""

    product: str
    driver: str
    codes: Codes
    speed: str


@dataclass(frozen=True)
class ControllerModel:
    """One of QEMU's controllers: its root hubs in bus order, and the options that number their ports."""

    root_hubs: tuple
    ports: tuple


HUB_CLASS = 9


def _human_interface(product, serial):
    codes = {speed: Codes(" 2.00", 0x0627, 0x0001, interface_class=3) for speed in (FULL, HIGH)}
    return Model(product, serial, codes)


def _disk(product, serial, product_id, backend=""):
    def codes(version):
        return Codes(version, 0x46f4, product_id, interface_class=8)
    return Model(product, serial, {FULL: codes(" 2.00"), HIGH: codes(" 2.00"), SUPER: codes(" 3.00")},
                 backend=backend)


DEVICES = {
    "usb-hub": Model("QEMU USB Hub", "314159",
                     {FULL: Codes(" 1.10", 0x0409, 0x55aa, (HUB_CLASS, 0, 0), interface_class=HUB_CLASS)},
                     ports=8),
    "usb-kbd": _human_interface("QEMU USB Keyboard", "68284"),
    "usb-mouse": _human_interface("QEMU USB Mouse", "89126"),
    "usb-tablet": _human_interface("QEMU USB Tablet", "28754"),
    "usb-wacom-tablet": Model("Wacom PenPartner", "1",
                              {FULL: Codes(" 1.10", 0x056a, 0x0000, interface_class=3)}),
    "usb-storage": _disk("QEMU USB HARDDRIVE", "1", 0x0001, backend="drive"),
    "usb-uas": _disk("USB Attached SCSI HBA", "27842", 0x0003),
    "usb-audio": Model("QEMU USB Audio", "1", {FULL: Codes(" 1.00", 0x46f4, 0x0002, interface_class=1)},
                       backend="audiodev"),
    "usb-serial": Model("QEMU USB SERIAL", "1", {FULL: Codes(" 2.00", 0x0403, 0x6001)}, backend="chardev"),
    "usb-net": Model("RNDIS/QEMU USB Network Device", "10",
                     {FULL: Codes(" 2.00", 0x0525, 0xa4a2, (2, 0, 0), configs=2, interface_class=2)},
                     backend="netdev"),
}


def _root_hub(product, driver, speed, protocol=0):
    version, number = {FULL: (" 1.10", 1), HIGH: (" 2.00", 2), SUPER: (" 3.00", 3)}[speed]
    codes = Codes(version, 0x1d6b, number, (HUB_CLASS, 0, protocol), interface_class=HUB_CLASS)
    return RootHub(product, driver, codes, speed)


_UHCI = ControllerModel((_root_hub("UHCI Host Controller", "uhci_hcd", FULL),), (2,))
_EHCI = ControllerModel((_root_hub("EHCI Host Controller", "ehci_hcd", HIGH),), (6,))

CONTROLLERS = {
    "qemu-xhci": ControllerModel((_root_hub("xHCI Host Controller", "xhci-hcd", HIGH, protocol=1),
                                  _root_hub("xHCI Host Controller", "xhci-hcd", SUPER, protocol=3)),
                                 ("p2", "p3")),
    "ich9-usb-ehci1": _EHCI,
    "ich9-usb-uhci1": _UHCI,
    "ich9-usb-uhci2": _UHCI,
    "usb-ehci": _EHCI,
    "piix3-usb-uhci": _UHCI,
    "pci-ohci": ControllerModel((_root_hub("OHCI PCI host controller", "ohci_hcd", FULL),), ("num-ports",)),
}

# The kernel's own controller without hardware, for gadgets.
DUMMY_CONTROLLER = ControllerModel((_root_hub("Dummy host controller", "dummy_hcd", HIGH),), (1,))
SUPER_DUMMY_CONTROLLER = ControllerModel((_root_hub("Dummy host controller", "dummy_hcd", HIGH),
                                          _root_hub("Dummy host controller", "dummy_hcd", SUPER)), (1, 1))

# The kernel's controller for devices elsewhere, which programs can be as well.
_VIRTUAL = "USB/IP Virtual Host Controller"
VIRTUAL_CONTROLLER = ControllerModel((_root_hub(_VIRTUAL, "vhci_hcd", HIGH), _root_hub(_VIRTUAL, "vhci_hcd", SUPER)),
                                     (15, 15))
