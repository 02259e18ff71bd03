"""Gadgets by their descriptors, as gadgetfs takes them: what devices get wrong, and the kernel corrects or leaves out.

They have no strings, so nobody has to answer requests. A configuration can have at most 256 bytes.
"""

import pathlib
import struct

CONTROL, ISOCHRONOUS, BULK, INTERRUPT = range(4)
VENDOR_SPECIFIC = 0xff


def _endpoint(address, attributes, size, interval, length=7):
    descriptor = struct.pack("<BBBBHB", length, 5, address, attributes, size, interval)
    return (descriptor + bytes(2))[:length]


def _interface(number, setting=0, endpoints=0, length=9):
    return struct.pack("9B", length, 4, number, setting, endpoints, VENDOR_SPECIFIC, 1, 2, 0)[:length]


def _association(first, count, length=8):
    return struct.pack("8B", length, 11, first, count, 2, 3, 4, 0)[:length]


def _configuration(interfaces, *parts):
    body = b"".join(parts)
    return struct.pack("<BBHBBBBB", 9, 2, 9 + len(body), interfaces, 1, 0, 0x80, 50) + body


def _with_endpoints(*endpoints, number=0, setting=0):
    return _interface(number, setting, len(endpoints)) + b"".join(endpoints)


# What belongs to a class, and means nothing here.
OTHER = bytes((5, 0x24, 1, 2, 3))

INTERVALS = _configuration(
    3,
    *(_with_endpoints(*(_endpoint(0x81 + place, INTERRUPT, 8 << place, interval)
                        for place, interval in enumerate((0, 1, 4, 16, 17, 100, 255))), number=0, setting=0),
      _with_endpoints(*(_endpoint(0x01 + place, ISOCHRONOUS, 200 * place, interval)
                        for place, interval in enumerate((0, 1, 4, 16, 17, 255))), number=1),
      _with_endpoints(_endpoint(0x88, BULK, 512, 0), _endpoint(0x09, BULK, 512, 5), _endpoint(0x0a, BULK, 64, 8),
                      _endpoint(0x8b, BULK, 64, 255), _endpoint(0x0c, CONTROL, 64, 3), number=2)))

SIZES = _configuration(
    4,
    *(_with_endpoints(*(_endpoint(0x81 + place, kind, size, 4) for place, size in
                        enumerate((0, 8, 64, 65, 512, 1023, 1024, 1025, 0x0bff, 0x0c00, 0x1400, 0x1c00, 0xf400))),
                      number=kind) for kind in (ISOCHRONOUS,)),
    *(_with_endpoints(*(_endpoint(0x01 + place, kind, size, 4) for place, size in
                        enumerate((0, 8, 64, 65, 512, 1024, 1025, 0x0c00, 0x1400, 0xf400))), number=kind)
      for kind in (INTERRUPT,)),
    _with_endpoints(_endpoint(0x0b, BULK, 65, 0), _endpoint(0x0c, BULK, 1025, 0), _endpoint(0x0d, BULK, 0x1400, 0),
                    _endpoint(0x0e, CONTROL, 65, 0), _endpoint(0x0f, CONTROL, 1024, 0), number=BULK))

DISORDER = _configuration(
    2, OTHER, _association(0, 2), _association(2, 1, length=7), _association(7, 9),
    # Numbers without order, a setting that comes twice, one that is apart from the others of its interface.
    _with_endpoints(_endpoint(0x81, BULK, 64, 0), number=5), OTHER,
    _with_endpoints(_endpoint(0x82, BULK, 64, 0), number=0, setting=1),
    _with_endpoints(_endpoint(0x83, BULK, 64, 0), number=0, setting=1),
    _with_endpoints(_endpoint(0x81, BULK, 64, 0), OTHER, _endpoint(0x02, BULK, 64, 0), number=5, setting=7),
    # Neither is an interface, so what follows belongs to nothing.
    _interface(6, length=8), _endpoint(0x84, BULK, 64, 0),
    # Endpoint 0, one that comes twice, one of another interface, reserved bits, too short, longer, and one too many.
    _interface(1, 0, 9), _endpoint(0x80, BULK, 64, 0), _endpoint(0x85, BULK, 64, 0), OTHER,
    _endpoint(0x85, INTERRUPT, 64, 4), _endpoint(0x82, BULK, 64, 0), _endpoint(0xf6, BULK, 64, 0),
    _endpoint(0x86, BULK, 64, 0), _endpoint(0x87, BULK, 64, 0, length=6), _endpoint(0x88, BULK, 64, 0, length=9),
    # A control endpoint takes both directions.
    _endpoint(0x09, CONTROL, 64, 0), _endpoint(0x89, BULK, 64, 0), _endpoint(0x05, CONTROL, 64, 0),
    _interface(1, 1, 1), _endpoint(0x8a, 0xff, 64, 4), _endpoint(0x8b, BULK, 64, 0),
    _association(3, 3))

TOO_MANY = _configuration(1, *(_association(number, 1) for number in range(18)),
                          *(_interface(number) for number in range(3)),
                          _interface(3, 0, 1), *(_endpoint(0x81 + number, BULK, 64, 0) for number in range(3)))

CUT = _configuration(2, _with_endpoints(_endpoint(0x81, BULK, 64, 0)), b"\x00\x05\x82\x02\x40\x00\x00",
                     _with_endpoints(_endpoint(0x83, BULK, 64, 0), number=1))
BEYOND_THE_END = _configuration(1, _with_endpoints(_endpoint(0x81, BULK, 64, 0)), b"\x09\x04\x01\x00\x00")
ONE_BYTE_LEFT = _configuration(1, _with_endpoints(_endpoint(0x81, BULK, 64, 0)), b"\x07")

CONFIGURATIONS = {"intervals": INTERVALS, "sizes": SIZES, "disorder": DISORDER, "too-many": TOO_MANY, "cut": CUT,
                  "beyond-the-end": BEYOND_THE_END, "one-byte-left": ONE_BYTE_LEFT}
# The rules for intervals and sizes depend on the speed.
GADGETS = ["intervals-full", "sizes-full", *(f"{name}-high" for name in CONFIGURATIONS)]


def _contents(configuration, speed):
    """The tag, a configuration for full speed, perhaps one for high speed, and the device descriptor."""
    device = struct.pack("<BBHBBBBHHHBBBB", 18, 1, 0x0200, VENDOR_SPECIFIC, 0, 0, 64, 0x1d6b, 0x0105, 0x0123, 0, 0, 0,
                         1)
    return bytes(4) + configuration * (2 if speed == "high" else 1) + device


def write_files(folder):
    """Write every gadget's descriptors to a file of its name."""
    folder.mkdir()
    for name in GADGETS:
        case, _, speed = name.rpartition("-")
        pathlib.Path(folder, name).write_bytes(_contents(CONFIGURATIONS[case], speed))
