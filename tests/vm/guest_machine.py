"""The running guest: QEMU's process, the serial line that steps are asked for on, and QEMU's monitor.

The guest answers a step with the files that it left. Nothing is waited for without end: every wait has a
deadline, and going past it, like an early end of QEMU, raises GuestError.
"""

import base64
import io
import json
import pathlib
import socket
import subprocess
import tarfile
import time


class GuestError(Exception):
    """The guest or QEMU does not do what it was asked."""


class Logs:
    """Where the guest's console and QEMU's own messages are kept."""

    LAST_LINES = 40

    def __init__(self, folder):
        self.console = pathlib.Path(folder, "console.log")
        self.errors = pathlib.Path(folder, "qemu.log")
        for log in (self.console, self.errors):
            log.unlink(missing_ok=True)

    def ends(self):
        """The last lines of both."""
        for log in (self.errors, self.console):
            lines = log.read_text(errors="replace").splitlines() if log.exists() else []
            yield f"--- {log}, the last of {len(lines)} lines:"
            yield from lines[-self.LAST_LINES:]


class Line:
    """One side of a connection that QEMU makes to a socket of ours; read line by line."""

    def __init__(self, path):
        self.path = str(path)
        self._server = socket.socket(socket.AF_UNIX)
        self._server.bind(self.path)
        self._server.listen(1)
        self._connection = None
        self._rest = b""

    def accept(self, seconds):
        """Let QEMU connect."""
        self._server.settimeout(seconds)
        try:
            self._connection, _ = self._server.accept()
        except TimeoutError as error:
            raise GuestError(f"QEMU did not connect within {seconds} s") from error

    def send(self, text):
        """Send a line."""
        self._connection.sendall(f"{text}\n".encode())

    def receive(self, deadline, what):
        """Return the next line without its end; raise GuestError at the deadline or at the end of QEMU."""
        while b"\n" not in self._rest:
            left = deadline - time.monotonic()
            if left <= 0:
                raise GuestError(f"no answer in time: {what}")
            self._connection.settimeout(left)
            try:
                part = self._connection.recv(65536)
            except TimeoutError:
                continue
            if not part:
                raise GuestError(f"the guest has ended, during this: {what}")
            self._rest += part
        line, _, self._rest = self._rest.partition(b"\n")
        return line.rstrip(b"\r").decode()

    def close(self):
        """Close whatever is open."""
        self._server.close()
        if self._connection:
            self._connection.close()


class Guest:
    """A guest from its boot to its end; used with "with". Rounds of a soak test get more time."""

    BOOT_SECONDS = 90
    STEP_SECONDS = 120
    MONITOR_SECONDS = 10
    ALL_SECONDS = 600
    SECONDS_A_ROUND = 3
    MEMORY = "384M"

    def __init__(self, sockets, kernel, archive, logs, usb_arguments, rounds=0):
        self._steps = Line(pathlib.Path(sockets, "steps"))
        self._monitor = Line(pathlib.Path(sockets, "monitor"))
        self._errors = logs.errors
        # Whatever ends this process, QEMU ends with it.
        self._command = [
            "setpriv", "--pdeathsig", "KILL", "qemu-system-x86_64",
            "-machine", "q35,accel=tcg", "-cpu", "qemu64", "-m", self.MEMORY,
            "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
            "-kernel", str(kernel), "-initrd", str(archive),
            "-append", "console=ttyS0 panic=-1 nokaslr mitigations=off init_on_alloc=0",
            "-serial", f"file:{logs.console}",
            "-chardev", f"socket,id=steps,path={self._steps.path}", "-serial", "chardev:steps",
            "-chardev", f"socket,id=monitor,path={self._monitor.path}",
            "-mon", "chardev=monitor,mode=control", *usb_arguments,
        ]
        self._qemu = None
        self._end_of_all = time.monotonic() + self.ALL_SECONDS + rounds * self.SECONDS_A_ROUND

    def __enter__(self):
        with open(self._errors, "wb") as errors:
            self._qemu = subprocess.Popen(self._command, stdin=subprocess.DEVNULL, stdout=errors,
                                          stderr=errors)
        try:
            self._start()
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_):
        self._end()

    def _end(self):
        self._qemu.kill()
        self._qemu.wait()
        self._steps.close()
        self._monitor.close()

    def _within(self, seconds):
        """The time that many seconds from now, or when all has to end."""
        return min(time.monotonic() + seconds, self._end_of_all)

    def _start(self):
        try:
            self._steps.accept(self.MONITOR_SECONDS)
            self._monitor.accept(self.MONITOR_SECONDS)
        except GuestError as error:
            raise GuestError(f"{error}, see {self._errors}") from error
        self._monitor.receive(self._within(self.MONITOR_SECONDS), "the monitor's greeting")
        self.monitor("qmp_capabilities")
        deadline = self._within(self.BOOT_SECONDS)
        while self._steps.receive(deadline, f"the kernel has {self.BOOT_SECONDS} s to boot") != "@@ready":
            pass

    def monitor(self, command, **arguments):
        """Give QEMU a command while the machine runs; raise GuestError when it refuses."""
        self._monitor.send(json.dumps({"execute": command, "arguments": arguments}))
        deadline = self._within(self.MONITOR_SECONDS)
        what = f"the monitor has {self.MONITOR_SECONDS} s for {command}"
        answer = {}
        while "return" not in answer:
            answer = json.loads(self._monitor.receive(deadline, what))
            if "error" in answer:
                raise GuestError(f"{command} {arguments}: {answer['error']['desc']}")

    def run(self, step, *arguments):
        """Run a step; return its exit status and its files as bytes by name."""
        asked = " ".join((step, *arguments))
        deadline = self._within(self.STEP_SECONDS)
        what = f"step {step} has {self.STEP_SECONDS} s, and all together {self.ALL_SECONDS} s"
        self._steps.send(asked)
        while self._steps.receive(deadline, what) != "@@begin":
            pass
        packed = []
        while not (line := self._steps.receive(deadline, what)).startswith("@@end "):
            packed.append(line)
        return int(line.split()[1]), _unpack("".join(packed))


def _unpack(text):
    with tarfile.open(fileobj=io.BytesIO(base64.b64decode(text)), mode="r:gz") as archive:
        return {member.name.removeprefix("./"): archive.extractfile(member).read()
                for member in archive.getmembers() if member.isfile()}
