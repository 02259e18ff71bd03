"""States of the machine beyond what is plugged in, for the proof of the list that is made from sysfs."""

import descriptors
import gadgets
import machine
import qemu
import topology
import virtual

# What comes and goes while lists are made: a hub with a device, and the first gadgets.
HUB = ("0000:00:03.0", (2, 3))
GADGETS_THAT_GO = 3

OFF, ON = range(2)
# Devices as controller and ports: what they are switched off by, and what then switches them on.
SWITCHED = (
    (*HUB, "authorized", "0", "1"),
    ("0000:00:03.0", (11,), "authorized", "0", "1"),
    ("0000:00:03.0", (2, 4), "bConfigurationValue", "-1", "1"),
    (gadgets.TWO_WAYS, (1,), "bConfigurationValue", "-1", "2"),
)


def check_all(guest, collector, found, proof, release, buses):
    """Check the list in one state after the other, beginning with the changed machine and its gadgets' buses."""
    def settle(plugged, others, name):
        buses = topology.machine_buses(plugged, release) + others
        collector.settle(buses, name)
        proof.check(name)

    _switch(collector, buses, OFF)
    proof.check("neither authorized nor configured")
    found.sysfs("neither authorized nor configured", topology.without_authorization(buses, *HUB))
    found.script("neither authorized nor configured, ordinary user",
                 topology.without_authorization(buses, *HUB, shows_interfaces=False), is_forged=True)
    _switch(collector, buses, ON)
    settle(machine.CHANGED_MACHINE, gadgets.buses(release), "authorized again, another configuration")
    collector.prepare("drivers")
    proof.check("drivers for all")
    for plug in machine.NESTED:
        guest.monitor("device_add", **qemu.plug_properties(plug))
    settle(machine.NESTED_MACHINE, gadgets.buses(release), "hubs as deep as can be")
    collector.prepare("super_gadgets", str(len(gadgets.GADGETS)), str(len(gadgets.SUPER_GADGETS)))
    settle(machine.NESTED_MACHINE, gadgets.super_buses(release), "gadgets at SuperSpeed")
    collector.prepare("virtual_devices", *virtual.DEVICES)
    docked = topology.machine_buses(machine.NESTED_MACHINE, release) + gadgets.super_buses(release)
    docked += virtual.buses(release)
    collector.settle(docked, "a hub of a dock")
    proof.check("a hub of a dock", virtual.CONTROLLER)
    found.sysfs("a hub of a dock", docked)
    found.plugin("a hub of a dock", docked)
    found.plugin_as_is("a hub of a dock, as it is")
    for name in descriptors.GADGETS:
        collector.prepare("odd_gadget", name, str(len(gadgets.SUPER_GADGETS)))
        proof.check(f"odd descriptors, {name}", gadgets.FREE_CONTROLLER)


def come_and_go(collector, proof, buses, lists, name):
    """Have devices come and go while so many lists are made, and wait until all are back."""
    proof.check_coming_and_going(name, lists, _name(buses, *HUB), GADGETS_THAT_GO)
    collector.settle(buses, f"{name}, all are back")
    proof.check(f"{name}, all are back")


def _switch(collector, buses, state):
    """Switch the devices off or on."""
    for controller, ports, attribute, *values in SWITCHED:
        collector.prepare("set", _name(buses, controller, ports), attribute, values[state])


def _name(buses, controller, ports):
    """The kernel's name of the device in these ports."""
    bus = next(bus for bus in buses if (bus.controller, bus.index) == (controller, 0))
    return bus.sysfs_name(next(item for item in bus.devices if item.ports == ports))
