#!/usr/bin/env python3
"""Install the package on a running Debian and use its systemd units there, while a device comes and goes.

QEMU, without hardware support, boots Debian's kernel and the systemd of this machine, whose files it shares with the guest
through 9p, read-only. What the guest changes is kept in its memory. Takes root's rights, since the guest has the owners of
all files.

Prints a line per check, and what differs; exits 1 if any failed.
"""

import argparse
import pathlib
import re
import shutil
import sys
import tempfile
import time

import initramfs
import qemu
from checks import Report
from guest_machine import Guest, GuestError, Logs
from machine import Controller, Machine, Plug

HERE = pathlib.Path(__file__).resolve().parent
README = HERE.parent.parent / "README.md"
MODULE_LISTS = {"system": ("virtio_pci", "9pnet_virtio", "9p", "overlay", "xhci-pci")}
FOLDERS = ("bin", "changes", "dev", "guest/modules", "proc", "shared", "sys", "system")
MACHINE = Machine(controllers=(Controller("xhci", "qemu-xhci", "03.0"),), plugs=())
STICK = Plug("usb-storage", "xhci", "1", serial="STICK-1")
LINE = 'mass storage 46f4:0001 "QEMU USB HARDDRIVE", serial "STICK-1"'
PACKAGE = "/guest/usbinfo.deb"
WATCH = "usbinfo-watch.service"
TIMER = "usbinfo-prometheus.timer"
METRICS = "usbinfo-prometheus.service"
UNITS = (WATCH, TIMER, METRICS)
# As Debian's package of the node exporter has them.
METRICS_FOLDER = "/var/lib/prometheus/node-exporter"
# The users that systemd makes up, see systemd.exec(5).
DYNAMIC_USERS = range(61184, 65520)


class System(Guest):
    """A whole Debian takes longer to boot, and keeps its changes in memory."""

    BOOT_SECONDS = 180
    MEMORY = "1G"
    # A try takes a quarter of a second.
    MOST_TRIES = 200

    def try_to(self, *command):
        """Run a command; return its exit status and what it printed."""
        status, files = self.run("run", *command)
        return status, files["messages"].decode(errors="replace").strip()

    def do(self, *command):
        """Run a command that has to succeed, and return what it printed."""
        status, text = self.try_to(*command)
        if status:
            raise GuestError(f"{' '.join(command)} ended with {status}: {text}")
        return text

    def show(self, unit, *properties):
        """The properties of a unit, by name."""
        return self.show_all((unit,), *properties)[unit]

    def show_all(self, units, *properties):
        """The properties of each unit."""
        blocks = self.do("systemctl", "show", f"--property={','.join(properties)}", *units).split("\n\n")
        return {unit: dict(line.split("=", 1) for line in block.splitlines())
                for unit, block in zip(units, blocks, strict=True)}

    def watching(self):
        """The number of the watch's process, once it has looked at the machine and waits for events."""
        process = self.show(WATCH, "MainPID")["MainPID"]
        for _ in range(self.MOST_TRIES):
            if "poll" in self.do("cat", f"/proc/{process}/wchan"):
                return process
        raise GuestError("the watch does not wait for events")

    def wait_for_line(self, text, *command):
        """Return the problems with a command that has to print a line that ends with the text."""
        pattern = re.sub(r"[^-\w/:]", ".", text)  # an argument is one word
        status, files = self.run("wait_for_line", f"{pattern}$", *command)
        return [] if status == 0 else [f"no line with {text}", *files["messages"].decode().splitlines()]


def main():
    """Boot the guest, check the units in it, and return the exit status."""
    parser = argparse.ArgumentParser(description="Use the systemd units on a running Debian.")
    parser.add_argument("package", type=pathlib.Path, help="the Debian package usbinfo")
    parser.add_argument("root", help="the files of the Debian system")
    parser.add_argument("kernel", type=pathlib.Path, help="the folder of the unpacked kernel")
    parser.add_argument("work", help="the folder for the logs")
    options = parser.parse_args()
    began = time.monotonic()
    logs = Logs(options.work)
    report = Report()
    try:
        _run(options, logs, report)
    except GuestError as error:
        report.add("the guest answers every step", [str(error)])
    if report.failed:
        print(*logs.ends(), sep="\n")
    print(f"{'FAILED' if report.failed else 'passed'} after {time.monotonic() - began:.0f} s")
    return 1 if report.failed else 0


def _run(options, logs, report):
    image, = (options.kernel / "boot").glob("vmlinuz-*")
    arguments = [*qemu.usb_arguments(MACHINE, (STICK,)), "-smp", "2", "-virtfs",
                 f"local,path={options.root},mount_tag=debian,security_model=none,readonly=on,multidevs=remap"]
    with tempfile.TemporaryDirectory() as folder:
        archive = pathlib.Path(folder, "initramfs")
        _pack(options, archive, pathlib.Path(folder, "root"))
        with System(folder, image, archive, logs, arguments) as system:
            began = time.monotonic()
            for check in (check_installation, check_watch, check_upgrade, check_stop, check_metrics, check_removal):
                check(system, report)
            print(f"the checks took {time.monotonic() - began:.0f} s")


def _pack(options, archive, root):
    for folder in FOLDERS:
        (root / folder).mkdir(parents=True)
    initramfs.add_busybox(root)
    (root / "bin/sh").symlink_to("busybox")
    initramfs.add_modules(root, options.kernel, MODULE_LISTS)
    shutil.copytree(HERE / "services", root / "guest", dirs_exist_ok=True)
    for program in ("agent", "load_modules"):
        shutil.copy(HERE / "guest" / program, root / "guest")
    shutil.copy(options.package, root / PACKAGE.lstrip("/"))
    (root / "init").symlink_to("guest/init")
    shutil.copy("/bin/busybox", root / "guest")
    initramfs.write_archive(root, archive)


def differing(expected, found):
    """The problems where two dictionaries differ in what is expected."""
    return [f"{name} is {found.get(name)!r} and should be {value!r}" for name, value in expected.items()
            if found.get(name) != value]


def readme_lines():
    """How to enable the watch and how to follow it, as README.md has it after the installation."""
    block = re.search(r"^```\n(?:sudo )?apt install .*\n((?:.*\n){2})```$", README.read_text(encoding="utf-8"), re.MULTILINE)
    return [line.partition("#")[0].removeprefix("sudo ").split() for line in block.group(1).splitlines()]


def check_installation(system, report):
    """Nothing runs, now or at the next boot, unless the administrator wants it."""
    system.do("dpkg", "--install", PACKAGE)
    problems = []
    for unit, found in system.show_all(UNITS, "LoadState", "ActiveState", "UnitFileState").items():
        wanted = {"LoadState": "loaded", "ActiveState": "inactive",
                  "UnitFileState": "static" if unit == METRICS else "disabled"}
        problems += [f"{unit}: {problem}" for problem in differing(wanted, found)]
    report.add("the package installs its units, and neither enables nor starts them", problems)


def check_watch(system, report):
    """The lines of README.md enable the watch and show what it prints."""
    enable, follow = readme_lines()
    system.do(*enable)
    wanted = {"ActiveState": "active", "UnitFileState": "enabled"}
    report.add("the watch runs, and will after the next boot", differing(wanted, system.show(WATCH, *wanted)))
    check_process(system, report, system.watching())

    system.monitor("device_add", **qemu.plug_properties(STICK))
    report.add("the journal has the line of a device that comes", system.wait_for_line(f"+ 2-1: {LINE}", *follow))
    system.monitor("device_del", id=STICK.name)
    report.add("the journal has the line of a device that goes", system.wait_for_line(f"- 2-1: {LINE}", *follow))


def check_process(system, report, process):
    """The watch is a user of its own and can get no more rights."""
    fields = dict(line.split(":\t", 1) for line in system.do("cat", f"/proc/{process}/status").splitlines())
    user = int(fields["Uid"].split()[0])
    problems = [] if user in DYNAMIC_USERS else [f"the user is {user}"]
    none = "0" * 16
    problems += differing({"CapEff": none, "CapBnd": none, "NoNewPrivs": "1", "Seccomp": "2"}, fields)
    report.add("the watch runs as a dynamic user without any right", problems)


def check_upgrade(system, report):
    """What runs is the new version afterwards; what does not run stays so."""
    before = system.watching()
    system.do("dpkg", "--install", PACKAGE)
    problems = ["it is the same process"] if system.watching() == before else []
    problems += differing({"ActiveState": "inactive"}, system.show(TIMER, "ActiveState"))
    report.add("an upgrade restarts the watch, and does not start the timer", problems)


def check_stop(system, report):
    """Stopping is no failure."""
    system.watching()
    system.do("systemctl", "stop", WATCH)
    wanted = {"ActiveState": "inactive", "Result": "success", "ExecMainCode": "1", "ExecMainStatus": "0"}
    report.add("the watch ends well when it is stopped", differing(wanted, system.show(WATCH, *wanted)))
    system.do("systemctl", "start", WATCH)


def check_metrics(system, report):
    """The timer's service writes what the user of the node exporter can read."""
    if system.try_to("id", "prometheus")[0]:
        system.do("useradd", "--system", "prometheus")
    # This machine may have one with metrics of other programs.
    system.do("rm", "-r", "-f", METRICS_FOLDER)
    system.do("install", "--directory", METRICS_FOLDER)
    system.do("chown", "prometheus:prometheus", str(pathlib.Path(METRICS_FOLDER).parent))
    system.do("systemctl", "enable", "--now", TIMER)
    # The timer's next time is within a minute.
    system.do("date", "--set", "+2min")
    problems = system.wait_for_line("the node exporter of Prometheus.", "journalctl", "--follow", "--lines=all", f"--unit={METRICS}")
    problems += differing({"Result": "success"}, system.show(METRICS, "Result"))
    status, text = system.try_to("setpriv", "--reuid=prometheus", "--regid=prometheus", "--clear-groups", "cat",
                                 f"{METRICS_FOLDER}/usbinfo.prom")
    if status or not re.search("^usbinfo_devices{", text, re.MULTILINE):
        problems += [f"reading the file ended with {status}:", *text.splitlines()]
    listed = system.do("ls", "-A", METRICS_FOLDER)
    problems += [] if listed == "usbinfo.prom" else [f"the folder holds {listed}"]
    report.add("the timer has metrics written that the node exporter can read", problems)


def check_removal(system, report):
    """Nothing of the package runs or is left."""
    system.do("dpkg", "--purge", "usbinfo")
    wanted = {"LoadState": "not-found", "ActiveState": "inactive"}
    problems = [f"{unit}: {problem}" for unit, found in system.show_all(UNITS, *wanted).items()
                for problem in differing(wanted, found)]
    report.add("removal stops what runs", problems)
    left = system.do("find", "/etc/systemd", "/usr/lib/systemd", "/var/lib/systemd", "-name", "usbinfo*")
    report.add("purging leaves no link to a unit", left.splitlines())


if __name__ == "__main__":
    sys.exit(main())
