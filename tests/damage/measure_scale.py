#!/usr/bin/env python3
"""Measures the time and the peak memory of usbinfo on enormous device lists: measure_scale.py USBINFO [NAME...]

The lists are made here, in a temporary folder, and some are beyond the limits of the command. The tests check the
output, not this script. Without names all lists are run, the slowest ones last. Nothing is kept."""
import os
import subprocess
import sys
import tempfile
import time


def device(bus, level, parent, port, number, ports):
    code = "09(hub  )" if ports else "03(HID  )"
    return (
        f"T:  Bus={bus:02} Lev={level:02} Prnt={parent:02} Port={port:02} Cnt=01 Dev#={number:3} Spd=480  "
        f"MxCh={ports:2}\n"
        f"D:  Ver= 2.00 Cls={code} Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
        "P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
        f"S:  Product=Device {number}\n"
        f"I:* If#= 0 Alt= 0 #EPs= 1 Cls={code} Sub=00 Prot=00 Driver=any\n\n"
    )


def full_buses(buses):
    """Per bus the 127 devices that it can have: a root hub, 18 hubs of six ports, a device on each port."""
    for bus in range(1, buses + 1):
        yield device(bus, 0, 0, 0, 1, 18)
        number = 20
        for hub in range(18):
            yield device(bus, 1, 1, hub, hub + 2, 6)
            for port in range(6):
                yield device(bus, 2, hub + 2, port, number, 0)
                number += 1


def lone_devices(count):
    """Devices without any hub, so that no port is looked for."""
    for number in range(count):
        yield device(1, 1, 1, 0, number, 0)


def stray_devices(ports, count):
    """Devices that find no port among those of the one hub: each is held against all of them."""
    yield device(1, 0, 0, 0, 1, min(ports, 255))
    for bus in range(2, 2 + (ports - 1) // 255):
        yield device(bus, 0, 0, 0, 1, 255)
    for number in range(count):
        yield device(1, 1, 99, 0, number + 2, 0)


def long_line():
    yield device(1, 1, 1, 0, 2, 0).replace("Device 2", "x" * (1 << 20))


LISTS = {
    "full-bus-1": lambda: full_buses(1),
    "long-line-1MB": long_line,
    "lone-10000": lambda: lone_devices(10000),
    "lone-20000": lambda: lone_devices(20000),
    "lone-40000": lambda: lone_devices(40000),
    "stray-1020x1000": lambda: stray_devices(1020, 1000),
    "stray-1020x2000": lambda: stray_devices(1020, 2000),
    "stray-2040x2000": lambda: stray_devices(2040, 2000),
    "full-buses-8": lambda: full_buses(8),
    "full-buses-16": lambda: full_buses(16),
    "full-buses-64": lambda: full_buses(64),
}


FORMATS = ("tree", "table", "json", "jsonl", "cimxml", "mof", "dot", "html")


def measure(usbinfo, path, output_format):
    """Of one run: the exit status, seconds of wall clock and of CPU, and the peak in MiB."""
    began = time.monotonic()
    command = [usbinfo, "--devices", path, "--no-limits", "--system-name", "box",
               "--format", output_format]
    child = subprocess.Popen(command + ["--output", path + ".out"], stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    return child.returncode, time.monotonic() - began, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def run_list(usbinfo, path, name):
    with open(path, "w", encoding="ascii") as file:
        file.writelines(LISTS[name]())
    output = path + ".out"
    for output_format in FORMATS:
        status, seconds, cpu, peak = measure(usbinfo, path, output_format)
        printed = os.path.getsize(output) if os.path.exists(output) else 0
        print(f"{name:20} {output_format:7} {os.path.getsize(path) / 1e6:7.2f} {printed / 1e6:7.2f} "
              f"{status:6} {seconds:8.2f} {cpu:8.2f} {peak:9.1f}", flush=True)
        if os.path.exists(output):
            os.remove(output)


def main(usbinfo, names):
    print(f"{'list':20} {'format':7} {'MB in':>7} {'MB out':>7} {'status':>6} {'seconds':>8} {'of CPU':>8} "
          f"{'peak MiB':>9}")
    with tempfile.TemporaryDirectory() as folder:
        for name in names or LISTS:
            run_list(usbinfo, os.path.join(folder, "list"), name)


if __name__ == "__main__":
    if len(sys.argv) < 2 or any(name not in LISTS for name in sys.argv[2:]):
        sys.exit(f"usage: measure_scale.py USBINFO [{'|'.join(LISTS)}]...")
    main(sys.argv[1], sys.argv[2:])
