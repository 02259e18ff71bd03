"""What the tests of a fleet share: an ordinary user to run as, a folder, processes that end with the test, a PostgreSQL
server, and reports of made-up machines."""
import copy
import ctypes
import glob
import json
import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = SOURCE / "examples" / "fleet"
SECONDS_TO_WAIT = 120
# Marks all processes of a test, also those that its services start.
MARK = "USBINFO_FLEET_TEST"
PR_SET_PDEATHSIG = 1
# The environment variables that name the programs to test, of which only the first is always needed.
PROGRAMS = ("USBINFO_STORE", "USBINFO", "USBINFO_PLUGIN")


def require(*programs):
    """Skips the tests of this file where one of the programs is not installed; where CI is set, that is a failure."""
    missing = [program for program in programs if not shutil.which(program)]
    if missing:
        message = f"not installed: {', '.join(missing)}"
        raise AssertionError(message) if "CI" in os.environ else unittest.SkipTest(message)


def find_user():
    """An ordinary user that can log in, since sshd runs commands with the user's shell."""
    shells = [user for user in pwd.getpwall() if user.pw_uid and os.path.basename(user.pw_shell) in ("bash", "sh", "dash")]
    return min(shells, key=lambda user: user.pw_name != "postgres", default=pwd.getpwnam("nobody"))


def leave_root():
    """As root, runs the test again as an ordinary user and exits as it does: from a copy of all that it takes, since that
    user may be kept out of the folders of the sources, of the build and of this Python."""
    if os.geteuid() != 0:
        return
    user = find_user()
    with tempfile.TemporaryDirectory() as folder:
        for name in ("tests/fleet", "tests/data/expected", "examples"):
            shutil.copytree(SOURCE / name, pathlib.Path(folder, name))
        programs = {name: shutil.copy(os.environ[name], folder) for name in PROGRAMS if name in os.environ}
        os.chmod(folder, 0o755)
        test = pathlib.Path(folder, "tests/fleet", os.path.basename(sys.argv[0]))
        environment = {**os.environ, **programs, "HOME": folder, "USER": user.pw_name,
                       "LOGNAME": user.pw_name}
        sys.exit(subprocess.run(["/usr/bin/python3", "-B", test, *sys.argv[1:]], cwd=folder, env=environment, check=False,
                                user=user.pw_uid, group=user.pw_gid, extra_groups=[]).returncode)


def end_with_parent():
    """For a new process: it is killed when the test ends, however that ends."""
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def start(arguments, **options):
    """Starts a process that does not outlive the test."""
    return subprocess.Popen([str(argument) for argument in arguments], preexec_fn=end_with_parent, **options)


def stop(process, how=signal.SIGTERM):
    """Ends a process and waits for it; kills one that does not end."""
    if process.poll() is None:
        process.send_signal(how)
    try:
        return process.wait(SECONDS_TO_WAIT)
    except subprocess.TimeoutExpired:
        process.kill()
        return process.wait()


def run(arguments, **options):
    """Runs a command to its end; gives the completed process with texts."""
    return subprocess.run([str(argument) for argument in arguments], text=True, capture_output=True,
                          timeout=SECONDS_TO_WAIT, check=False, **options)


def wait_until(condition, what, seconds=SECONDS_TO_WAIT):
    """Returns the first result of `condition` that is true. Nothing else says when another program is so far."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def free_port(address="127.0.0.1"):
    """A port that nobody uses at this address."""
    with socket.socket() as listener:
        listener.bind((address, 0))
        return listener.getsockname()[1]


def processes_with_mark():
    """The command lines of the processes that this test has started and that still run, but for the test's own."""
    found = []
    mark = f"{MARK}={os.environ[MARK]}".encode()
    for folder in glob.glob("/proc/[0-9]*"):
        try:
            environment = pathlib.Path(folder, "environ").read_bytes().split(b"\0")
            command = pathlib.Path(folder, "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
        except OSError:
            continue
        if mark in environment and int(folder[6:]) != os.getpid() and command:
            found.append(command)
    return found


def children_of(pid):
    """The ids of the processes that this one has started."""
    return [int(child) for path in glob.glob(f"/proc/{pid}/task/*/children")
            for child in pathlib.Path(path).read_text(encoding="ascii").split()]


def do_nothing(pids):
    """Whether these processes neither read nor write for a moment."""
    def counters():
        return [pathlib.Path(f"/proc/{pid}/io").read_text(encoding="utf-8") for pid in pids]

    before = counters()
    time.sleep(0.5)
    return counters() == before


def fill_in(name, replacements, target):
    """Writes the example file with other ports and paths to `target`. Each text must be there to be replaced."""
    text = (EXAMPLES / name).read_text(encoding="utf-8")
    for old, new in replacements.items():
        if old not in text:
            raise AssertionError(f"{name} has no {old}")
        text = text.replace(old, str(new))
    target.write_text(text, encoding="utf-8")


class Postgres:
    """A server of the test's own, reached through a socket in its folder only."""

    def __init__(self, folder):
        self.folder = folder
        self.programs = pathlib.Path(max(glob.glob("/usr/lib/postgresql/*/bin")))
        self.process = None
        result = run([self.programs / "initdb", "-D", folder / "data", "-U", "owner", "-A", "trust", "-E", "UTF8",
                      "--locale=C.UTF-8", "-N"])
        if result.returncode != 0:
            raise AssertionError(result.stderr)
        self.start()

    def start(self):
        """Starts the server and waits until it takes queries."""
        with open(self.folder / "postgres.log", "ab") as log:
            self.process = start([self.programs / "postgres", "-D", self.folder / "data", "-k", self.folder,
                                  "-c", "listen_addresses="], stdout=log, stderr=log)
        wait_until(lambda: self.psql("SELECT 1").returncode == 0, "PostgreSQL")

    def stop(self):
        """Ends the server at once: connections are cut, transactions undone."""
        stop(self.process, signal.SIGINT)

    def url(self, user="owner"):
        """As --db takes it."""
        return f"postgresql:///postgres?host={self.folder}&user={user}"

    def make_store(self, program):
        """An empty store, where there is none, with the roles of the example."""
        for command in ([program, "migrate", "--db", self.url()],
                        ["psql", "-X", "-q", "-d", self.url(), "-f", EXAMPLES / "roles.sql"]):
            result = run(command)
            if result.returncode != 0:
                raise AssertionError(result.stderr)

    def psql(self, sql, user="owner"):
        """Runs the SQL as that user."""
        return run(["psql", "-X", "-q", "-A", "-t", "-v", "ON_ERROR_STOP=1", "-d", self.url(user), "-c", sql])

    def number(self, sql):
        """The one number that the query gives; -1 where it fails."""
        result = self.psql(sql)
        return int(result.stdout) if result.returncode == 0 else -1


def desktop():
    """The inventory of examples/desktop.json."""
    return json.loads((SOURCE / "examples" / "desktop.json").read_text(encoding="utf-8"))


def report(host, number=0, document=None):
    """The inventory on one line, as usbinfo -j --compact prints it: of that machine, at the time of that number."""
    inventory = copy.deepcopy(document or desktop())
    before = inventory["system"]["name"]
    inventory.setdefault("origin", desktop()["origin"])
    inventory["origin"]["collected"] = f"2026-01-01T{number // 3600:02}:{number // 60 % 60:02}:{number % 60:02}Z"
    text = json.dumps(inventory, ensure_ascii=False, separators=(",", ":"))
    return text.replace(before, host)


def small_report(host, number):
    """A report of one machine with one device, whose serial number differs from report to report."""
    inventory = desktop()
    inventory["kernel"] = {"devices": [], "ports": []}
    for name, items in inventory["classes"].items():
        inventory["classes"][name] = [item for item in items[:1] if name == "KALDO_USBDevice"]
    inventory["classes"]["KALDO_USBDevice"][0]["SerialNumber"] = f"{host}-{number}"
    return report(host, number, inventory)


def prepare():
    """To be called first. Gives the path of usbinfo-store."""
    if "USBINFO_STORE" not in os.environ:
        sys.exit("USBINFO_STORE must name the usbinfo-store to test")
    leave_root()
    os.environ[MARK] = str(os.getpid())
    # Neither the user's settings nor language.
    os.environ.update(LC_ALL="C.UTF-8")
    os.environ.pop("USBINFO_STORE_DB", None)
    os.environ["PATH"] += os.pathsep + "/usr/sbin"
    return pathlib.Path(os.environ["USBINFO_STORE"]).resolve()
