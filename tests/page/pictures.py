"""What the tests of the pictures share: the built command, captured lists by name, and lists made up here."""
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


def render(device_list, output_format, system="testhost"):
    """What the command prints for the list."""
    # What others call a device depends on the machine's list of names, so there is none here.
    result = subprocess.run([COMMAND, "--devices", "-", "--system-name", system, "--format", output_format],
                            input=device_list, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                            env={**os.environ, "USBINFO_IDS": ""})
    # A list without devices has its document too.
    if result.returncode > 1:
        raise AssertionError(f"exit status {result.returncode}: {result.stderr.decode()}")
    return result.stdout
