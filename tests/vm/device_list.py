"""The device list that describes given buses, as the kernel and as the usb-devices script write it.

What is left out has no influence on the inventory: bandwidth, endpoints' details, names of classes and
drivers. From the list, tests/data/derive_expected.py derives the inventory by the parser's documented rules.

Here is also what the command makes of the text of a list before the plug-in reads it.
"""

import re

import gadgets

REPLACEMENT = "\ufffd"
CONTROL = re.compile(r"[\x00-\x1f\x7f-\x9f\u2028\u2029]")


def shown(text):
    """A string as it is shown where no string can begin a line."""
    return CONTROL.sub(REPLACEMENT, text)


def escaped(text):
    """A string as it is shown to people."""
    return text.replace("\\", r"\\").replace("\n", r"\n")


def first_line(text):
    """What the kernel's list has of a string on the line where it begins."""
    return text.partition("\n")[0]


def first_echoed_line(text):
    """The same in the output of usb-devices."""
    return first_line(text.replace("\\n", "\n"))


def from_sysfs(text):
    """The list that the command makes of sysfs when the kernel's is this text.

    It lacks the B lines, since sysfs does not show bandwidth, and the line breaks in strings.
    """
    for gadget in gadgets.ALL:
        for string in gadget.strings.values():
            text = text.replace(f"={string}\n".encode(), f"={shown(string)}\n".encode())
    return re.sub(rb"^B:.*\n", b"", text, flags=re.MULTILINE)


def repaired(text, buses):
    """The text with every device's true parent and without the interfaces of unconfigured devices.

    Returned with how many records had another parent, and how many had such interfaces.
    """
    parents = {(bus.number, device.number): bus.parent(device).number if device.ports else 0
               for bus in buses for device in bus.devices}
    count = 0

    def repair(line):
        nonlocal count
        true = parents[int(line[2]), int(line[5])]
        count += int(line[3]) != true
        return b"%s%02d%s" % (line[1], true, line[4])
    text = re.sub(rb"^(T:  Bus=(\d+) Lev=\d+ Prnt=)(\d+)( .*Dev#= *(\d+) )", repair, text, flags=re.MULTILINE)
    text, stale = re.subn(rb"^(C:  #Ifs= 0 .*\n)(?:I:.*\n)+", rb"\1", text, flags=re.MULTILINE)
    return text, count, stale


def read_by_plugin(text):
    """The text without what is behind a record's first E line, which the plug-in would take for the next device's."""
    lines, is_behind = [], False
    for line in text.splitlines(keepends=True):
        is_behind = is_behind and line[:2] != b"T:" and line.strip() != b""
        if not is_behind:
            lines.append(line)
        is_behind = is_behind or line[:2] == b"E:"
    return b"".join(lines)


def findings(text):
    """What the kernel does not write but a forged string, as an inventory's origin has it; in the order of lines."""
    found, block = [], []
    for number, line in enumerate([*text.decode(errors="replace").split("\n"), ""], start=1):
        if line.strip():
            block.append((number, line))
            continue
        start = next((place for place, (_, item) in enumerate(block) if item.startswith("T:")), len(block))
        found += _findings_in(block[start:])
        block = []
    return found


def _findings_in(block):
    """What is found in the lines of one record, as (number, line)."""
    def lines(pattern, behind=0):
        return [number for number, line in block if number > behind and re.match(pattern, line)]
    first = (lines("S:") or [block[-1][0]])[0] if block else 0
    names = sorted({line.partition("=")[0] for _, line in block if line.startswith("S:")})
    cases = [("two-t-lines", 2, lines("T:")), ("two-d-lines", 2, lines("D:")), ("two-p-lines", 2, lines("P:")),
             ("line-behind-string", 1, lines("[TDP]:", first))]
    cases += [("two-strings", 2, lines(f"{name}=")) for name in names]
    device = re.search(r"Bus=(\S+) .*Dev#=( *\d+)", block[0][1]) if block else None
    return [{"code": code, "lines": numbers, "device": f"Bus {device[1]}  Device {device[2].strip():>3}"}
            for code, fewest, numbers in cases if len(numbers) >= fewest]


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


def mended_script_list(buses, text):
    """The same as script_list with the true parents."""
    return repaired(script_list(buses, text), buses)[0]


def script_list(buses, text):
    """The list of usb-devices, with the buses in the order of its text: usbutils 014 has them by name, 018 by number.

    Devices are listed by name, so that 1-11 precedes 1-2.

    The script keeps the number of the device at hand in one variable for all levels. So only the first device
    below a hub gets the hub for parent; each later one gets the device that was listed right before it.
    Strings pass through the echo of Debian's shell, which makes newlines of what looks like one in C.
    """
    numbers = [int(number) for number in re.findall(rb"^T:  Bus=(\d+) Lev=00", text, re.MULTILINE)]
    blocks = []
    for bus in sorted(buses, key=lambda bus: numbers.index(bus.number) if bus.number in numbers else len(numbers)):
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
