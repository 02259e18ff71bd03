"""What the tests of the pictures share: the built command, captured lists by name, and lists made up here."""
import json
import os
import pathlib
import subprocess
import sys

CAPTURES = pathlib.Path(__file__).resolve().parent.parent / "data" / "captures"
COMMAND = sys.argv[1]

HOSTILE_NAMES = (
    "<script>alert(1)</script>",
    '"><img src=x onerror=alert(1)>',
    "</title></style></script><svg onload=alert(1)>",
    "javascript:alert(1)",
    "' onfocus='alert(1)' autofocus='",
    "&lt;b&gt; &amp; &#60;",
    "]]></script><!--",
    "back\\slash \\N \\n \\l\\",
    'a"]; x -> y; b [label="',
    "<<b>bold</b>>",
    "two  blanks",
    "long" * 500,
)
# As people see them.
SHOWN_NAMES = tuple(name.replace("\\", "\\\\") for name in HOSTILE_NAMES)


def capture_names():
    """The names of all captured lists."""
    return sorted(path.stem for path in CAPTURES.glob("*.txt"))


def capture(name):
    """The captured list of that name."""
    return (CAPTURES / f"{name}.txt").read_bytes()


def device(bus, level, parent, port, number, ports, name):
    """A device that says `name` for every string, a hub where it has ports."""
    code = "09(hub  )" if ports else "03(HID  )"
    return (f"T:  Bus={bus:02} Lev={level:02} Prnt={parent:02} Port={port:02} Cnt=01 Dev#={number:3} Spd=480  "
            f"MxCh={ports:2}\nD:  Ver= 2.00 Cls={code} Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
            "P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
            f"S:  Manufacturer={name}\nS:  Product={name}\nS:  SerialNumber={name}\n"
            f"I:* If#= 0 Alt= 0 #EPs= 1 Cls={code} Sub=00 Prot=00 Driver=any\n\n")


def hostile_list():
    """A device per hostile name on one hub."""
    text = device(1, 0, 0, 0, 1, len(HOSTILE_NAMES), "Root")
    for port, name in enumerate(HOSTILE_NAMES):
        text += device(1, 1, 1, port, port + 2, 0, name)
    return text.encode()


def full_buses(buses):
    """Per bus a hub of 15 ports with a hub of seven ports on each and a device on every other one of those."""
    text = ""
    for bus in range(1, buses + 1):
        text += device(bus, 0, 0, 0, 1, 15, f"Bus {bus}")
        for hub in range(15):
            text += device(bus, 1, 1, hub, hub + 2, 7, f"Hub {hub}")
            for port in range(0, 7, 2):
                text += device(bus, 2, hub + 2, port, 20 + hub * 7 + port, 0, f"Device {bus}-{hub}-{port}")
    return text.encode()


# Class codes, driver, speed, vendor, product and names of what people have many of.
WORKPLACE = (
    ("03(HID  ) Sub=01 Prot=01", "usbhid", "1.5", "413c", "2113", "Dell", "Dell KB216 Wired Keyboard"),
    ("03(HID  ) Sub=01 Prot=02", "usbhid", "1.5", "046d", "c077", "Logitech", "USB Optical Mouse"),
    ("08(stor.) Sub=06 Prot=50", "usb-storage", "480", "0951", "1666", "Kingston", "DataTraveler 3.0"),
    ("01(audio) Sub=01 Prot=00", "snd-usb-audio", "12", "0b0e", "0301", "GN Netcom A/S", "Jabra EVOLVE 20 MS"),
    ("0e(video) Sub=01 Prot=00", "uvcvideo", "480", "046d", "085c", "Logitech", "C922 Pro Stream Webcam"),
    ("07(print) Sub=01 Prot=02", "usblp", "480", "03f0", "052a", "Hewlett-Packard", "HP LaserJet MFP M28w"),
    ("ff(vend.) Sub=00 Prot=00", "ftdi_sio", "12", "0403", "6001", "FTDI", "FT232R USB UART"),
    ("0b(scard) Sub=00 Prot=00", "(none)", "12", "08e6", "3437", "Gemalto", "USB SmartCard Reader"),
)


def workplace(buses, hubs, devices):
    """Buses of eight ports with that many hubs on each and devices on each hub, as in a test laboratory, and an empty
    bus after each two."""
    text = ""
    count = 0
    for bus in range(1, buses + buses // 2 + 1):
        text += device(bus, 0, 0, 0, 1, 8, "xHCI Host Controller")
        for hub in range(hubs if bus % 3 != 0 else 0):
            text += device(bus, 1, 1, hub, hub + 2, 8, "USB2.0 Hub").replace("S:  SerialNumber=USB2.0 Hub\n", "")
            for port in range(devices):
                codes, driver, speed, vendor, product, maker, name = WORKPLACE[count % len(WORKPLACE)]
                text += (f"T:  Bus={bus:02} Lev=02 Prnt={hub + 2:02} Port={port:02} Cnt=01 "
                         f"Dev#={20 + hub * 8 + port:3} Spd={speed:5}MxCh= 0\n"
                         "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS=64 #Cfgs=  1\n"
                         f"P:  Vendor={vendor} ProdID={product} Rev= 1.00\n"
                         f"S:  Manufacturer={maker}\nS:  Product={name}\nS:  SerialNumber=A{count * 7919 + 4096:08X}\n"
                         f"C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=100mA\n"
                         f"I:* If#= 0 Alt= 0 #EPs= 1 Cls={codes} Driver={driver}\n\n")
                count += 1
    return text.encode()


def with_shared_sockets(device_list):
    """A saved inventory of the list, as the kernel would report it if each root port of bus 1 were the peer of that of
    bus 2 with the same number."""
    inventory = json.loads(render(device_list, "json"))
    inventory["origin"].update({"source": "sysfs", "collected": "2026-11-21T12:00:00Z"})
    ports = {port["name"]: port for port in inventory["kernel"]["ports"]}
    for name, port in ports.items():
        peer = ("2" if name.startswith("1-") else "1") + name[1:]
        port["connect"] = "hotplug"
        if name[:2] in ("1-", "2-") and "." not in name and peer in ports:
            port["peer"] = peer
    return json.dumps(inventory).encode()


def render(devices, output_format, system="testhost", options=()):
    """What the command prints for the list or the saved inventory."""
    # A saved inventory has its name.
    named = [] if devices.startswith(b"{") else ["--system-name", system]
    # What others call a device depends on the machine's list of names, so there is none here.
    result = subprocess.run([COMMAND, "--devices", "-", *named, "--format", output_format, *options], input=devices,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                            env={**os.environ, "USBINFO_IDS": ""})
    # A list without devices has its document too.
    if result.returncode > 1:
        raise AssertionError(f"exit status {result.returncode}: {result.stderr.decode()}")
    return result.stdout
