"""The device list that describes given buses, as the kernel and as the usb-devices script write it.

What is left out has no influence on the inventory: bandwidth, endpoints' details, names of classes and
drivers. From the list, tests/data/derive_expected.py derives the inventory by the parser's documented rules.
"""


def kernel_list(buses):
    """The list of debugfs: buses by number, below each hub its devices by port."""
    blocks = []
    for bus in sorted(buses, key=lambda bus: bus.number):
        _walk_kernel(bus, bus.root, None, blocks)
    return _text(blocks)


def _walk_kernel(bus, device, parent, blocks):
    blocks.append(_block(bus, device, parent.number if parent else 0))
    for child in bus.children(device):
        _walk_kernel(bus, child, device, blocks)


def script_list(buses):
    """The list of the script in usbutils 014: buses and devices by name, so that 1-11 precedes 1-2.

    The script keeps the number of the device at hand in one variable for all levels. So only the first device
    below a hub gets the hub for parent; each later one gets the device that was listed right before it.
    Strings pass through the echo of Debian's shell, which makes newlines of what looks like one in C.
    """
    blocks = []
    for bus in sorted(buses, key=lambda bus: str(bus.number)):
        _walk_script(bus, bus.root, 0, blocks)
    return _text(blocks).replace(rb"\n", b"\n")


def _walk_script(bus, device, parent, blocks):
    """Append the blocks of a device and of all below it; return the number left in the variable."""
    blocks.append(_block(bus, device, parent))
    last = device.number
    for child in sorted(bus.children(device), key=bus.sysfs_name):
        last = _walk_script(bus, child, last, blocks)
    return last


def _text(blocks):
    return "".join(f"\n{block}" for block in blocks).encode()


def _block(bus, device, parent):
    codes = device.codes
    port = device.ports[-1] - 1 if device.ports else 0
    lines = [
        f"T:  Bus={bus.number:02} Lev={len(device.ports):02} Prnt={parent:02} Port={port:02} Cnt=00 "
        f"Dev#={device.number:3} Spd={device.speed:4} MxCh={device.port_count:2}",
        "D:  Ver={} Cls={:02x}(     ) Sub={:02x} Prot={:02x} MxPS=64 #Cfgs={:3}".format(
            codes.version, *codes.device_class, codes.configs),
        f"P:  Vendor={codes.vendor:04x} ProdID={codes.product:04x} Rev= 0.00",
        *(f"S:  {name}={text}" for name, text in device.strings.items()),
        "C:* #Ifs= 1 Cfg#= 1 Atr=00 MxPwr=  0mA",
        f"I:* If#= 0 Alt= 0 #EPs= 1 Cls={codes.interface_class:02x}(     ) Sub=00 Prot=00 Driver=(none)",
        "E:  Ad=81(I) Atr=03(Int.) MxPS=   8 Ivl=10ms",
    ]
    return "".join(f"{line}\n" for line in lines)
