"""The buses that the kernel must find, worked out from the description of the machine.

A bus holds the devices on it by their ports. Where a device ends up follows from the speeds that it and its
port have in common. Numbers that the kernel gives away as it likes, of buses and devices, are filled in from
sysfs.
"""

import re
from dataclasses import dataclass, field, replace

import models

MISSING = 0


@dataclass
class Device:
    """A device or hub: where it is, what it says of itself, and the number that the kernel gave it."""

    ports: tuple
    codes: models.Codes
    speed: str
    strings: dict
    port_count: int = 0
    number: int = MISSING

    @property
    def identifiers(self):
        """Vendor and product as tools for USB spell them."""
        return f"{self.codes.vendor:04x}:{self.codes.product:04x}"

    @property
    def is_hub(self):
        """Whether it has ports for others."""
        return self.codes.interface_class == models.HUB_CLASS


@dataclass
class Bus:
    """A root hub and all below it; known by the controller's address and its place among the controller's."""

    controller: str
    index: int
    devices: list = field(default_factory=list)
    number: int = MISSING

    def sysfs_name(self, device):
        """The name of a device's folder in sysfs."""
        return f"{self.number}-" + ".".join(map(str, device.ports)) if device.ports else f"usb{self.number}"

    def children(self, device):
        """The devices in a hub's ports, by port."""
        depth = len(device.ports)
        return sorted((item for item in self.devices if item.ports and item.ports[:-1] == device.ports
                       and len(item.ports) == depth + 1), key=lambda item: item.ports)

    def parent(self, device):
        """The hub that a device is plugged into."""
        return next(item for item in self.devices if item.ports == device.ports[:-1])

    @property
    def root(self):
        """The root hub."""
        return next(item for item in self.devices if not item.ports)


def strings(manufacturer=None, product=None, serial=None):
    """The three strings of a device, without those that it has not got."""
    given = {"Manufacturer": manufacturer, "Product": product, "SerialNumber": serial}
    return {name: text for name, text in given.items() if text}


def controller_buses(address, model, options, release):
    """The buses of a controller, with nothing but their root hubs."""
    buses = []
    for index, (hub, ports) in enumerate(zip(model.root_hubs, model.ports)):
        texts = strings(f"Linux {release} {hub.driver}", hub.product, address)
        root = Device((), hub.codes, hub.speed, texts, options.get(ports, ports))
        buses.append(Bus(address, index, [root]))
    return buses


def machine_buses(machine, release):
    """The buses of the machine with all that is plugged in."""
    buses = []
    for item in machine.controllers:
        buses += controller_buses(item.pci_address, models.CONTROLLERS[item.model], item.options, release)
    for plug in sorted(machine.plugs, key=lambda plug: port_path(plug.port)):
        _plug_in(machine, buses, plug)
    return buses


def port_path(text):
    """The port numbers of "2.1"."""
    return tuple(map(int, text.split(".")))


def _plug_in(machine, buses, plug):
    bus, ports, speed = _landing(machine, buses, plug)
    model = models.DEVICES[plug.model]
    address = machine.controller(plug.controller).pci_address
    serial = plug.serial or f"{model.serial}-{address}-{plug.port}"
    bus.devices.append(Device(ports, model.codes[speed], speed,
                              strings(model.manufacturer, model.product, serial), model.ports))


def _landing(machine, buses, plug):
    """The fastest bus that the device can be on, with the ports and the speed that it has there."""
    possible = _speeds(plug)
    found = [(bus, ports, speed) for bus, ports, port_speeds in _ways(machine, buses, plug)
             for speed in port_speeds if speed in possible]
    return max(found, key=lambda way: int(way[2]))


def _speeds(plug):
    speeds = set(models.DEVICES[plug.model].codes)
    return speeds & {models.FULL} if plug.options.get("usb_version") == 1 else speeds


def _ways(machine, buses, plug):
    """The buses that the plug's port leads to: the controller's own, and that of the port's companion."""
    ports = port_path(plug.port)
    for bus in buses:
        owner = next(item for item in machine.controllers if item.pci_address == bus.controller)
        if owner.name == plug.controller:
            yield bus, ports, _port_speeds(bus, owner, ports)
        elif owner.master == plug.controller and 0 < ports[0] - owner.first_port <= bus.root.port_count:
            yield bus, (ports[0] - owner.first_port, *ports[1:]), (models.FULL,)


def _port_speeds(bus, controller, ports):
    if len(ports) > 1:
        hubs = [item for item in bus.devices if item.ports == ports[:-1]]
        return [hub.speed for hub in hubs]
    # xHCI serves the slower devices too; EHCI cannot.
    both = bus.root.speed == models.HIGH and controller.model == "qemu-xhci"
    return (models.FULL, models.HIGH) if both else (bus.root.speed,)


# --- the numbers that the kernel gave ----------------------------------------

def number_buses(buses, facts):
    """Give the buses the numbers that the kernel gave them; facts are lines "NAME DEVICE-NUMBER FOLDER"."""
    numbers = {}
    for name, _, folder in facts:
        if re.fullmatch(r"usb\d+", name):
            numbers.setdefault(folder.split("/")[-2], []).append(int(name[3:]))
    for bus in buses:
        given = sorted(numbers.get(bus.controller, []))
        bus.number = given[bus.index] if bus.index < len(given) else MISSING
    buses.sort(key=lambda bus: bus.number)


def number_devices(buses, facts):
    """Give the devices their numbers, found by the ports that they are in."""
    numbers = {name: int(number) for name, number, _ in facts}
    for bus in buses:
        for device in bus.devices:
            device.number = numbers.get(bus.sysfs_name(device), MISSING)


def without_authorization(buses, controller, ports, shows_interfaces=True):
    """The buses when the hub in these ports may not be used: it has no ports then, and nothing is behind it.

    Where its interfaces are not shown, it is no hub.
    """
    def change(hub):
        codes = hub.codes if shows_interfaces else replace(hub.codes, interface_class=0)
        return replace(hub, codes=codes, port_count=0)

    found = []
    for bus in buses:
        devices = bus.devices
        if (bus.controller, bus.index) == (controller, 0):
            devices = [change(item) if item.ports == ports else item for item in devices
                       if item.ports == ports or item.ports[:len(ports)] != ports]
        found.append(replace(bus, devices=devices))
    return found
