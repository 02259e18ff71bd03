#!/usr/bin/env python3
"""Measure how long the command takes beside the usual tools for USB, in an emulated machine with eight devices.

QEMU, without hardware support, boots Debian's kernel. Round by round, every tool runs once as root. Prints the median
of each as a table, with the ratio to a C++ program that does nothing; then how soon udevadm monitor and watch report a
plug; then the times of the command on this machine's processor, with a device list from a file.
"""

import argparse
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

import checks
import initramfs
import qemu
import topology
from guest_machine import Guest, GuestError, Logs
from machine import Controller, Machine, Plug

MACHINE = Machine(
    controllers=(
        Controller("xhci", "qemu-xhci", "03.0", {"p2": 6, "p3": 4}),
        Controller("ich9", "ich9-usb-ehci1", "1d.7", {"multifunction": True}),
        Controller("ich9-a", "ich9-usb-uhci1", "1d.0", {"multifunction": True}, "ich9", 0),
    ),
    plugs=(
        Plug("usb-hub", "xhci", "1"),
        Plug("usb-kbd", "xhci", "1.1", serial="KBD-0001"),
        Plug("usb-mouse", "xhci", "1.2"),
        Plug("usb-storage", "xhci", "2", serial="DISK0001"),
        Plug("usb-audio", "xhci", "3"),
        Plug("usb-net", "xhci", "4", serial="NET-0004"),
        Plug("usb-storage", "ich9", "5", serial="DISK0002"),
        Plug("usb-tablet", "ich9", "1", serial="TAB-0001"),
    ),
)
EMPTY = "empty-program"
PROGRAMS = ("tests/time-commands", "tests/time-plugs", f"tests/{EMPTY}")
# The commands, and how the table names those whose words do not say it.
COMMANDS = {
    EMPTY: "an empty C++ program",
    "cat /sys/kernel/debug/usb/devices": "cat of the device list",
    "lsusb -t": "",
    "usbinfo -j": "",
    "usbinfo": "",
    "usbinfo -v": "",
    "lsusb": "",
    "lsusb -v": "",
    "hwinfo --usb": "",
    "lshw": "",
    "usb-devices": "",
}
PEERS = ("lsusb", "hwinfo", "lshw", "udevadm")
# Where the tools look for names.
NAMES = ("/usr/share/misc/usb.ids", "/usr/share/misc/pci.ids", "/usr/lib/udev/hwdb.bin")
# Of the watch, in milliseconds.
SETTLE = 100
PLUGS_A_STEP = 20
CAPTURE = "tests/data/captures/vm-desktop-debugfs.txt"


def main():
    """Measure in the guest and on this machine, and return the exit status."""
    options = _options()
    logs = Logs(options.work)
    try:
        runs, plugs = _measure_in_guest(options, logs)
        print(f"In an emulated machine with {len(MACHINE.plugs)} devices, {options.rounds} runs each:\n")
        _print_table(list(COMMANDS), runs)
        print(f"\nAfter a plug, {options.rounds} times:\n")
        _print_plugs(plugs)
    except GuestError as error:
        print(error, *logs.ends(), sep="\n")
        return 1
    build = pathlib.Path(options.build)
    ours = [str(build / "tests" / EMPTY), f"{build / 'usbinfo'} --devices {CAPTURE} -j",
            f"{build / 'usbinfo'} --devices {CAPTURE}"]
    print("\nOn this machine:\n")
    _print_table(ours, _measure_here(build, ours, options.rounds * 10))
    return 0


def _options():
    parser = argparse.ArgumentParser(description="Measure the command beside the usual tools for USB.")
    parser.add_argument("build", help="the folder of the products")
    parser.add_argument("kernel", type=pathlib.Path, help="the folder of the unpacked kernel")
    parser.add_argument("work", help="the folder for the logs")
    parser.add_argument("rounds", type=int, help="how often each tool is run, after once for warming up")
    return parser.parse_args()


def _measure_in_guest(options, logs):
    image, = (options.kernel / "boot").glob("vmlinuz-*")
    release, = (path.name for path in (options.kernel / "lib/modules").iterdir())
    with tempfile.TemporaryDirectory() as folder:
        archive = pathlib.Path(folder, "initramfs")
        commands = pathlib.Path(folder, "commands")
        commands.write_text("".join(f"{command}\n" for command in COMMANDS), encoding="ascii")
        installed = [*filter(None, map(shutil.which, PEERS)), *(name for name in NAMES if pathlib.Path(name).exists())]
        initramfs.pack(options.build, options.kernel, archive, folder, PROGRAMS, installed,
                       {"guest/commands": commands})
        with Guest(folder, image, archive, logs, qemu.usb_arguments(MACHINE, ()), options.rounds * 10) as guest:
            collector = checks.Collector(guest, _Problems())
            collector.settle(topology.machine_buses(MACHINE, release), "eight devices")
            for step in (("drivers",), ("debugfs", "mount")):
                collector.prepare(*step)
            runs = [_times(guest, "time_commands") for _ in range(options.rounds + 1)]
            collector.prepare("stick")
            return runs[1:], _plugs(guest, options.rounds)


class _Problems:
    """Stops where the machine is not as it has to be."""

    @staticmethod
    def add(name, problems):
        """Take in a check."""
        if problems:
            raise GuestError("\n".join((name, *problems)))


def _times(guest, step, *arguments):
    status, files = guest.run(step, *arguments)
    if status:
        raise GuestError(f"step {step} ended with {status}: {files['messages'].decode()}")
    return _parsed(files["times"].decode())


def _plugs(guest, rounds):
    """The first plug is for warming up."""
    times = []
    while len(times) <= rounds:
        count = min(PLUGS_A_STEP, rounds + 1 - len(times))
        times += _times(guest, "time_plugs", str(count), f"{SETTLE}ms")
    return times[1:]


def _measure_here(build, commands, rounds):
    text = "".join(f"{command}\n" for command in commands)
    return [_parsed(subprocess.run([build / "tests/time-commands"], input=text, stdout=subprocess.PIPE, text=True,
                                   check=True).stdout) for _ in range(rounds + 1)][1:]


def _parsed(text):
    """The numbers in each line: per command the microseconds and the exit status."""
    return [tuple(map(int, line.split())) for line in text.splitlines()]


def _print_table(commands, rounds):
    """Print a row for each command; a round has a result for each."""
    medians = [statistics.median(microseconds for microseconds, _ in results) for results in zip(*rounds)]
    print("| command | ms | times an empty program |\n|---|---|---|")
    for command, median in zip(commands, medians):
        name = COMMANDS.get(command) or f"`{command}`"
        print(f"| {name} | {median / 1000:.1f} | {median / medians[0]:.1f} |")
    for command, results in zip(commands, zip(*rounds)):
        failed = sorted({status for _, status in results} - {0})
        if failed:
            print(f"`{command}` ends with {', '.join(map(str, failed))}.")


def _print_plugs(rounds):
    """Print when a plug was reported; a round has the microseconds to three reports."""
    first, last, watch = ([microseconds / 1000 for microseconds in times] for times in zip(*rounds))
    rows = {"the first line of `udevadm monitor --kernel`": first,
            "its last line": last,
            f"the line of `usbinfo watch`, less {SETTLE} ms for settling": [time - SETTLE for time in watch],
            "that line after the last one of `udevadm`, less the same": [
                later - earlier - SETTLE for later, earlier in zip(watch, last)]}
    print("| from the plug to | median, ms | most, ms |\n|---|---|---|")
    for name, times in rows.items():
        print(f"| {name} | {statistics.median(times):.1f} | {max(times):.1f} |")


if __name__ == "__main__":
    sys.exit(main())
