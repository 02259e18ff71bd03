#!/usr/bin/env python3
"""Reports that are fetched: by ClusterShell's clush over a real sshd that answers on 50 addresses, each with another
recorded machine, or with what goes wrong with machines."""
import csv
import io
import json
import os
import pathlib
import pty
import re
import selectors
import socket
import subprocess
import tempfile
import threading
import unittest

import machine

STORE = None
NODES = [f"127.0.1.{number}" for number in range(1, 51)]
REFUSING, HANGING, GARBAGE, FAILING, SILENT, CUT = NODES[44:50]
BAD = {REFUSING, HANGING, GARBAGE, FAILING, SILENT, CUT}
TALKATIVE = NODES[1]
SSHD = "/usr/sbin/sshd"


class Sshd:
    """Listens on the nodes' addresses, and has an sshd of its own for each connection."""

    def __init__(self, folder, addresses):
        self.folder = folder
        self.sessions = []
        self.listeners, self.port = self.listen(addresses)
        self.write_files()
        self.ending, self.end = socket.socketpair()
        self.thread = threading.Thread(target=self.serve)
        self.thread.start()

    @staticmethod
    def listen(addresses):
        """Sockets at one port of all addresses."""
        while True:
            port = machine.free_port(addresses[0])
            try:
                return [socket.create_server((address, port), backlog=64) for address in addresses], port
            except OSError:
                continue

    def write_files(self):
        """The keys, sshd's configuration, and what a node runs whatever it is asked to."""
        for key in ("host_key", "user_key"):
            result = machine.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / key])
            if result.returncode != 0:
                raise AssertionError(result.stderr)
        (self.folder / "nodes").mkdir()
        command = self.folder / "command"
        command.write_text(f'#!/bin/sh\nset -- $SSH_CONNECTION\nexec sh "{self.folder}/nodes/$3"\n', encoding="utf-8")
        command.chmod(0o755)
        (self.folder / "sshd_config").write_text(
            f"HostKey {self.folder}/host_key\nAuthorizedKeysFile {self.folder}/user_key.pub\nForceCommand {command}\n"
            "PasswordAuthentication no\nKbdInteractiveAuthentication no\nUsePAM no\nStrictModes no\nPidFile none\n",
            encoding="utf-8")

    def serve(self):
        """Until the end of the test."""
        selector = selectors.DefaultSelector()
        for listener in self.listeners:
            selector.register(listener, selectors.EVENT_READ)
        selector.register(self.ending, selectors.EVENT_READ)
        with open(self.folder / "sshd.log", "ab") as log:
            while True:
                for key, _ in selector.select():
                    if key.fileobj is self.ending:
                        return
                    connection, _ = key.fileobj.accept()
                    with connection:
                        self.sessions.append(subprocess.Popen(
                            [SSHD, "-i", "-e", "-f", self.folder / "sshd_config"], stdin=connection, stdout=connection,
                            stderr=log))

    def close(self):
        """Ends the sessions that have not ended."""
        self.end.close()
        self.thread.join()
        for listener in [*self.listeners, self.ending]:
            listener.close()
        for session in self.sessions:
            machine.stop(session)


def documents():
    """Recorded inventories: those of the captures, and one of a machine with more."""
    folder = machine.SOURCE / "tests" / "data" / "expected"
    recorded = [json.loads(path.read_text(encoding="utf-8")) for path in sorted(folder.glob("*.json"))]
    return [*recorded, machine.desktop()]


class PullTest(unittest.TestCase):
    """Fifty nodes, of which some give no report."""

    @classmethod
    def setUpClass(cls):
        machine.require("clush", "nodeset", "sshd", "ssh")

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.addCleanup(self.check_nothing_is_left)
        self.sshd = Sshd(self.folder, [node for node in NODES if node != REFUSING])
        self.addCleanup(self.sshd.close)
        self.database = self.folder / "store.db"
        self.lines = {}
        recorded = documents()
        for number, node in enumerate(NODES):
            document = recorded[number % len(recorded)]
            self.lines[node] = machine.report(f"host{number + 1}", number, document)
            self.set_node(node, f"cat {self.write(node, self.lines[node])}")
        self.set_up_bad_nodes()
        (self.folder / "clush.conf").write_text(
            "[Main]\nfanout: 16\nconnect_timeout: 30\nssh_user: %s\nssh_options: -p %d -i %s -F none "
            "-oStrictHostKeyChecking=no -oUserKnownHostsFile=/dev/null -oLogLevel=ERROR\n"
            % (os.environ.get("USER", "root"), self.sshd.port, self.folder / "user_key"), encoding="utf-8")
        self.environment = {**os.environ, "CLUSTERSHELL_CFGDIR": str(self.folder)}

    def write(self, name, text):
        """A file with this line. Gives its path."""
        path = self.folder / f"text-{name}"
        path.write_text(text + "\n", encoding="utf-8")
        return path

    def set_node(self, node, script):
        """What the node does when it is asked."""
        (self.folder / "nodes" / node).write_text(script + "\n", encoding="utf-8")

    def set_up_bad_nodes(self):
        """Each with another fault; one that has none prints more than its report."""
        never = self.folder / "never"
        os.mkfifo(never)
        # Whoever waits for the FIFO's writer goes on when the test ends.
        self.addCleanup(lambda: os.close(os.open(never, os.O_RDWR | os.O_NONBLOCK)))
        self.set_node(HANGING, f"exec cat {never}")
        forgery = f"{NODES[0]}: {machine.report('forged')}"
        self.set_node(GARBAGE, f"cat {self.write('garbage', forgery)}; printf '\\033[2Jcommand not found\\n'")
        self.set_node(FAILING, "echo 'usbinfo: cannot read /sys: no permission' >&2; exit 2")
        self.set_node(SILENT, "exit 0")
        self.set_node(CUT, f"head -c 1000 {self.folder / ('text-' + CUT)}")
        self.set_node(TALKATIVE, f"echo Welcome; cat {self.folder / ('text-' + TALKATIVE)}; exit 1")

    def check_nothing_is_left(self):
        """Sessions and commands have ended."""
        machine.wait_until(lambda: not machine.processes_with_mark(), "the end of all processes")

    def store(self, *arguments, **options):
        """Runs usbinfo-store on the test's store."""
        return machine.run([STORE, *arguments, "--db", self.database], env=self.environment, **options)

    def collect(self, *arguments):
        """From the nodes of the test."""
        return self.store("collect", "--timeout", "20s", *arguments)

    def last_errors(self):
        """What `hosts` shows as the last error, by host."""
        result = self.store("hosts", "--format", "csv")
        return {row["host"]: row["lastError"] for row in csv.DictReader(io.StringIO(result.stdout))}

    def test_good_machines_are_stored_and_bad_ones_remembered_with_their_reasons(self):
        result = self.collect("-w", "127.0.1.[1-50]")
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(result.stdout.split()[-5:], ["44", "0", "0", "0", "6"], result.stderr)
        self.assertNotIn("\r", result.stderr)
        for number, node in enumerate(NODES):
            shown = self.store("show", f"host{number + 1}", "--format", "json")
            if node in BAD:
                self.assertEqual(shown.returncode, 1)
            else:
                self.assertEqual(json.loads(shown.stdout)["classes"], json.loads(self.lines[node])["classes"])
        errors = self.last_errors()
        expected = {REFUSING: "ended with status 255: ssh: connect to host .* port .*: Connection refused",
                    HANGING: "gave no inventory within 20 seconds",
                    GARBAGE: r"printed no inventory: .*command not found",
                    FAILING: "ended with status 2: usbinfo: cannot read /sys: no permission",
                    SILENT: "printed nothing",
                    CUT: ".*holds no inventory.*"}
        for node, reason in expected.items():
            self.assertRegex(errors[node], f"^{reason}$")
            self.assertNotIn("\x1b", errors[node])
            self.assertIn(f"usbinfo-store: {node}: ", result.stderr)
        self.assertEqual({host for host, reason in errors.items() if reason}, BAD)
        self.assertNotIn("forged", errors)

    def test_a_node_stays_tied_to_its_host(self):
        self.assertEqual(self.collect("-w", NODES[0]).returncode, 0)
        self.set_node(NODES[0], "echo broken; exit 3")
        self.assertEqual(self.collect("-w", NODES[0]).returncode, 1)
        self.assertEqual(self.last_errors(), {"host1": "ended with status 3: broken"})
        self.set_node(NODES[0], f"cat {self.folder / ('text-' + NODES[0])}")
        again = self.collect("-w", NODES[0], "--format", "json")
        self.assertEqual(again.returncode, 0)
        self.assertEqual(json.loads(again.stdout)["collected"][0]["known"], 1)
        self.assertEqual(self.last_errors(), {"host1": ""})

    def test_a_node_that_never_reported_can_be_forgotten(self):
        self.collect("-w", SILENT)
        self.assertEqual(self.store("forget", SILENT).returncode, 0)
        self.assertEqual(self.last_errors(), {})

    def test_a_terminal_shows_the_progress(self):
        master, slave = pty.openpty()
        process = machine.start([STORE, "collect", "-w", f"{NODES[0]},{NODES[2]},{FAILING}", "--db", self.database],
                                env=self.environment, stdout=subprocess.DEVNULL, stderr=slave)
        os.close(slave)
        shown = b""
        try:
            while part := os.read(master, 4096):
                shown += part
        except OSError:  # the other end is closed
            pass
        os.close(master)
        self.assertEqual(process.wait(), 1)
        lines = re.split("\r\x1b\\[K", shown.decode())
        self.assertIn("[                    ] 0 of 3 done, 0 failed", lines[1])
        self.assertRegex("".join(lines), r"\[#+ +\] \d of 3 done, \d failed, \d+\.\d/s, \d+ s left")
        self.assertRegex(lines[-1], f"^usbinfo-store: {re.escape(FAILING)}: ended with status 2")

    def test_nodes_that_clustershell_does_not_know_are_an_error(self):
        result = self.collect("-w", "web[1-")
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr, r"^usbinfo-store: there are no nodes web\[1-: .*\n$")
        self.assertFalse(self.database.exists())


class WithoutClusterShellTest(unittest.TestCase):
    """Where it is not installed."""

    def test_the_message_names_the_package(self):
        result = machine.run([STORE, "collect", "-w", "web1"], env={"PATH": "/nonexistent", "HOME": "/nonexistent"})
        self.assertEqual(result.returncode, 2)
        self.assertIn("cannot run nodeset: No such file or directory; install ClusterShell", result.stderr)


if __name__ == "__main__":
    STORE = machine.prepare()
    unittest.main(verbosity=2)
