"""What the command must print and log in the guest, worked out without it.

The inventory follows from the buses alone. The log follows from the text that the plug-in reads, as another
program read it, and from where it must have found it.
"""

import json
import pathlib
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "data"))

import derive_expected as derive  # noqa: E402  (its folder is known from here on)

SYSTEM = b"vm"


# What a device is called and where it is, which the buses say; the kernel's own list says the rest.
NAMED = ("device", "name", "number", "speed", "manufacturer", "product", "serial")

STRINGS = {"manufacturer": "Manufacturer", "product": "Product", "serial": "SerialNumber"}


def inventory(text):
    """The JSON document that follows from a device list."""
    return derive.Run(text, SYSTEM, derive.CLASSES).inventory()


def kernel_facts(text, described=None):
    """What the kernel's list says besides the classes; names and places follow from the list that describes the buses.

    Without a description they follow from the text, too.
    """
    facts = inventory(text)["kernel"]
    if described is not None:
        named = inventory(described)["kernel"]
        for device, other in zip(facts["devices"], named["devices"], strict=True):
            device.update({name: other[name] for name in NAMED})
        facts["ports"] = named["ports"]
    return facts


def facts_of_sysfs(text, described, buses, nodes):
    """The same with what sysfs says besides: whole strings, the halves of a socket, and nodes in /dev by device."""
    facts = kernel_facts(text, described)
    peers = _peers(buses)
    strings = {bus.sysfs_name(device): device.strings for bus in buses for device in bus.devices}
    for device in facts["devices"]:
        device["nodes"] = nodes[device["name"]]
        device |= {member: strings[device["name"]].get(name) for member, name in STRINGS.items()}
    for port in facts["ports"]:
        port |= {"peer": peers.get(port["name"]), "connect": "unknown"}
    return facts


def _peers(buses):
    """The names of ports that are halves of one socket: those of the root hubs of one controller, by number."""
    found = {}
    for bus in buses:
        for other in buses:
            if bus.controller == other.controller and bus.index != other.index:
                for number in range(1, min(bus.root.port_count, other.root.port_count) + 1):
                    found[f"{bus.number}-{number}"] = f"{other.number}-{number}"
    return found


def origin(source, findings=(), repairs=()):
    """Where an inventory of this machine is from; when it was taken is left to the caller."""
    return {**derive.ORIGIN, "source": source, "findings": list(findings),
            "repairs": [{"code": code, "count": count} for code, count in repairs if count]}


def log(text):
    """The log of a run that finds the list in debugfs."""
    return derive.Run(text, SYSTEM, derive.CLASSES).log


def fallback_log(text):
    """The log of a run that finds no list, tries in vain to mount one, and takes the script's output."""
    return FallbackRun(text, SYSTEM, derive.CLASSES).log


class FallbackRun(derive.Run):
    """A run that ends up with the output of usb-devices."""

    def _read(self):
        begin = len(self.log)
        records = super()._read()
        self.log[begin + 1:begin + 1] = [
            {"severity": derive.STATUS, "text": "Could not open usb device file "},
            {"severity": derive.DEBUG, "text": derive.plain(self._text)},
        ]
        return records


# --- what changes when devices are pulled out and put in ---------------------

def changes(before, after):
    """How the inventories of two states of the machine differ, computed from the buses themselves."""
    old, new = _by_place(before), _by_place(after)
    gone = [old[place] for place in old.keys() - new.keys()]
    come = [new[place] for place in new.keys() - old.keys()]
    return {"removed": _instances(gone), "added": _instances(come),
            "changed": _ports(gone, new, "Device connected", "No device connected")
            | _ports(come, old, "No device connected", "Device connected")}


def _by_place(buses):
    return {(bus.controller, bus.index, device.ports): (bus, device)
            for bus in buses for device in bus.devices}


def _identity(bus, device):
    return f"Bus {bus.number:02}  Device {device.number:3}"


def _port(bus, hub, number):
    """The name of a hub's port, which is counted from 1 everywhere but in names."""
    return f"{_identity(bus, hub)} Port {number - 1:02}"


def _path(class_name, name):
    keys = {**derive.keys(class_name, SYSTEM), "DeviceID": name.encode()}
    return derive.object_path(class_name, keys).decode()


def _instances(items):
    """The keys of all instances that exist because of these devices."""
    found = set()
    for bus, device in items:
        class_name, name = derive.HUB if device.is_hub else derive.DEVICE, _identity(bus, device)
        hung_on = _port(bus, bus.parent(device), device.ports[-1])
        found |= {(class_name, name),
                  (derive.CONNECTION, _path(derive.PORT, hung_on), _path(class_name, name))}
        for number in range(1, device.port_count + 1):
            port = _port(bus, device, number)
            found |= {(derive.PORT, port),
                      (derive.PORT_ON_HUB, _path(derive.HUB, name), _path(derive.PORT, port))}
    return found


def _ports(items, others, status, other_status):
    """What changes at the ports of these devices, as far as the hub is there in the other state too."""
    return {(derive.PORT, _port(bus, bus.parent(device), device.ports[-1]), "StatusDescriptions",
             json.dumps([status]), json.dumps([other_status]))
            for bus, device in items if (bus.controller, bus.index, device.ports[:-1]) in others}
