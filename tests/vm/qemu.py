"""QEMU's command line, made of the description of the machine.

Every part is one -device option; the same properties serve to plug a device into the running machine.
"""

import json

import models

# What devices need behind them; all of it is there from the start, so that devices can be added later.
BACKENDS = (
    "-audiodev", "none,id=audiodev",
    "-chardev", "null,id=chardev",
    "-netdev", "hubport,id=netdev,hubid=0",
)


def plug_properties(plug):
    """The properties of a device, as -device and device_add take them."""
    properties = {"driver": plug.model, "id": plug.name, "bus": f"{plug.controller}.0", "port": plug.port,
                  **plug.options}
    if plug.serial:
        properties["serial"] = plug.serial
    backend = models.DEVICES[plug.model].backend
    if backend:
        properties[backend] = f"disk-{plug.name}" if backend == "drive" else backend
    return properties


def _controller_properties(controller):
    properties = {"driver": controller.model, "id": controller.name, "addr": controller.address,
                  **controller.options}
    if controller.master:
        properties |= {"masterbus": f"{controller.master}.0", "firstport": controller.first_port}
    return properties


def _disks(plugs):
    for plug in plugs:
        if models.DEVICES[plug.model].backend == "drive":
            yield from ("-blockdev", json.dumps({"driver": "null-co", "node-name": f"disk-{plug.name}",
                                                 "size": 2 ** 20, "read-zeroes": True}))


def usb_arguments(machine, later):
    """The arguments for all controllers and devices, and for the disks of plugs that come later."""
    parts = [_controller_properties(item) for item in machine.controllers]
    parts += [plug_properties(plug) for plug in machine.plugs]
    devices = [argument for part in parts for argument in ("-device", json.dumps(part))]
    return [*BACKENDS, *_disks((*machine.plugs, *later)), *devices]
