#!/usr/bin/env python3
"""Run the command on a real kernel and compare what it prints with what is plugged in.

QEMU, without hardware support, boots Debian's kernel on the machine of machine.py. The guest runs the command
with debugfs and without, as root and as an ordinary user, while devices come and go, and with gadgets of its
own.

Usage:
    run_vm.py BUILD KERNEL WORK [RECORDS]
        The folders of the products, of the unpacked kernel, and for the logs. With a fourth one, what sysfs and the
        kernel's list hold in each state is recorded there; see tests/data/README.md.

Prints a line per check, and what differs; exits 1 if any failed.
"""

import pathlib
import sys
import tempfile
import time

import checks
import initramfs
import machine
import qemu
from guest_machine import Guest, GuestError, Logs


def main(build, kernel, work, records=None):
    """Boot the guest, run all checks in it, and return the exit status."""
    began = time.monotonic()
    logs = Logs(work)
    failed = _run(build, pathlib.Path(kernel), logs, records)
    if failed:
        print(*logs.ends(), sep="\n")
    print(f"{'FAILED' if failed else 'passed'} after {time.monotonic() - began:.0f} s")
    return 1 if failed else 0


def _run(build, kernel, logs, records):
    image, = (kernel / "boot").glob("vmlinuz-*")
    release, = (path.name for path in (kernel / "lib/modules").iterdir())
    usb_arguments = qemu.usb_arguments(machine.MACHINE, machine.ADDED)
    report = checks.Report()
    with tempfile.TemporaryDirectory() as folder:
        archive = pathlib.Path(folder, "initramfs")
        initramfs.pack(build, kernel, archive, folder)
        try:
            with Guest(folder, image, archive, logs, usb_arguments) as guest:
                checks.run_all(guest, release, report, records)
        except GuestError as error:
            report.add("the guest answers every step", [str(error)])
    return report.failed


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
