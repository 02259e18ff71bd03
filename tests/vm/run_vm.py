#!/usr/bin/env python3
"""Run the command on a real kernel and compare what it prints with what is plugged in.

QEMU, without hardware support, boots Debian's kernel on the machine of machine.py. The guest runs the command
as root and as an ordinary user, with debugfs and usbutils and without, while devices come and go, and with
gadgets of its own.

Prints a line per check, and what differs; exits 1 if any failed.
"""

import argparse
import pathlib
import sys
import tempfile
import time

import checks
import initramfs
import machine
import qemu
from guest_machine import Guest, GuestError, Logs


def main():
    """Boot the guest, run what is asked for in it, and return the exit status."""
    began = time.monotonic()
    options = _options()
    logs = Logs(options.work)
    failed = _run(options, logs)
    if failed:
        print(*logs.ends(), sep="\n")
    print(f"{'FAILED' if failed else 'passed'} after {time.monotonic() - began:.0f} s")
    return 1 if failed else 0


def _options():
    parser = argparse.ArgumentParser(description="Run the command on a real kernel.")
    parser.add_argument("build", help="the folder of the products")
    parser.add_argument("kernel", type=pathlib.Path, help="the folder of the unpacked kernel")
    parser.add_argument("work", help="the folder for the logs")
    parser.add_argument("records", nargs="?", help="a folder to record what sysfs and the kernel's list hold in each "
                                                   "state; see tests/data/README.md")
    parser.add_argument("--usb-devices", metavar="FILE", type=pathlib.Path,
                        help="only check what comes of the output of that script, as another version has it")
    parser.add_argument("--usbguard", metavar="FOLDER", default="build/usbguard", type=pathlib.Path,
                        help="the folder that tests/fetch_usbguard makes; build/usbguard unless it is given")
    parser.add_argument("--soak", type=int, metavar="ROUNDS",
                        help="only have devices come and go, for so many lists and as often for watch, and send "
                             f"{checks.UEVENTS_A_ROUND} events each time")
    return parser.parse_args()


def _run(options, logs):
    image, = (options.kernel / "boot").glob("vmlinuz-*")
    release, = (path.name for path in (options.kernel / "lib/modules").iterdir())
    usb_arguments = qemu.usb_arguments(machine.MACHINE, machine.ADDED)
    report = checks.Report()
    with tempfile.TemporaryDirectory() as folder:
        archive = pathlib.Path(folder, "initramfs")
        other = {"usr/bin/usb-devices": options.usb_devices} if options.usb_devices else {}
        initramfs.pack(options.build, options.kernel, archive, folder, files=other,
                        usbguard=None if options.usb_devices or options.soak else options.usbguard)
        try:
            with Guest(folder, image, archive, logs, usb_arguments, options.soak or 0) as guest:
                if options.usb_devices:
                    checks.run_script(guest, release, report)
                elif options.soak:
                    checks.soak(guest, release, report, options.soak)
                else:
                    checks.run_all(guest, release, report, options.records)
        except GuestError as error:
            report.add("the guest answers every step", [str(error)])
    return report.failed


if __name__ == "__main__":
    sys.exit(main())
