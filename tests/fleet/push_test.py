#!/usr/bin/env python3
"""Reports that machines push: over two real rsyslogds and a real PostgreSQL, with the files that docs/fleet.md has people
install. Programs are killed in mid-stream, and every report is stored exactly once.

Usage: push_test.py [--reports N] [UNITTEST-OPTION...]
"""
import json
import os
import pathlib
import signal
import sys
import tempfile
import unittest

import machine

# More in each of three parts than the 128 that omrelp keeps to send again, or it would make up for a collector that
# confirms what it has not stored.
REPORTS = 500
HOSTS = 20
STORE = None


class Certificates:
    """A certificate authority of the test's own, and certificates with the names of hosts."""

    def __init__(self, folder):
        self.folder = folder
        self.openssl("req", "-x509", "-newkey", "ed25519", "-nodes", "-keyout", "ca.key", "-out", "ca.pem", "-days", "2",
                     "-subj", "/CN=test authority")

    def openssl(self, *arguments):
        """Runs openssl in the folder."""
        result = machine.run(["openssl", *arguments], cwd=self.folder)
        if result.returncode != 0:
            raise AssertionError(result.stderr)

    def issue(self, file, name):
        """Writes FILE.pem and FILE.key for the host of that name."""
        (self.folder / f"{file}.ext").write_text(f"subjectAltName=DNS:{name}\n", encoding="ascii")
        self.openssl("req", "-newkey", "ed25519", "-nodes", "-keyout", f"{file}.key", "-out", f"{file}.csr",
                     "-subj", f"/CN={name}")
        self.openssl("x509", "-req", "-in", f"{file}.csr", "-CA", "ca.pem", "-CAkey", "ca.key", "-days", "2",
                     "-extfile", f"{file}.ext", "-out", f"{file}.pem")


class Rsyslog:
    """An rsyslogd with one of the example files."""

    def __init__(self, folder, example, replacements):
        self.folder = folder
        self.process = None
        folder.mkdir()
        machine.fill_in(example, replacements, folder / "usbinfo.conf")
        # What the distribution's rsyslog.conf has, as far as it matters here.
        (folder / "rsyslog.conf").write_text(
            f'global(workDirectory="{folder}")\ninclude(file="{folder}/usbinfo.conf")\n'
            f'action(type="omfile" file="{folder}/messages")\n', encoding="ascii")

    def start(self):
        """Starts it; what it cannot do yet, it tries again."""
        with open(self.folder / "errors", "ab") as errors:
            self.process = machine.start(["rsyslogd", "-n", "-f", self.folder / "rsyslog.conf",
                                          "-i", self.folder / "pid"], stdout=errors, stderr=errors)

    def kill(self):
        """As a crash would."""
        machine.stop(self.process, signal.SIGKILL)
        (self.folder / "pid").unlink(missing_ok=True)

    def messages(self):
        """What it says of itself."""
        files = [self.folder / name for name in ("messages", "errors")]
        return "".join(file.read_text(encoding="utf-8", errors="replace") for file in files if file.exists())

    def store_process(self):
        """The id of the usbinfo-store that it has started; 0 for none."""
        for child in machine.children_of(self.process.pid):
            if pathlib.Path(f"/proc/{child}/cmdline").read_bytes().startswith(os.fsencode(STORE)):
                return child
        return 0


class PushTest(unittest.TestCase):
    """A machine's rsyslogd, and the collector's with store and database."""

    collector_name = "collector.example.org"
    machine_name = "web1.example.org"

    def setUp(self):
        machine.require("rsyslogd", "psql", "openssl")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.addCleanup(self.check_nothing_is_left)
        self.database = machine.Postgres(self.folder)
        self.addCleanup(self.database.stop)
        self.database.make_store(STORE)
        certificates = Certificates(self.folder)
        certificates.issue("collector", self.collector_name)
        certificates.issue("machine", self.machine_name)
        self.port = machine.free_port()
        self.spool = self.folder / "spool"
        self.spool.mkdir()
        self.lines = []
        self.collector = self.rsyslog("collector", {
            'port="2514"': f'address="127.0.0.1" port="{self.port}"',
            "postgresql://usbinfo_load@/usbinfo": self.database.url("usbinfo_load"),
            "/usr/bin/usbinfo-store": STORE,
            "/var/log": self.folder})
        self.sender = self.rsyslog("machine", {
            'target="collector.example.org" port="2514"': f'target="127.0.0.1" port="{self.port}"',
            "/var/spool/usbinfo": self.spool,
            'interval="60"': 'interval="1"',
            'action.resumeIntervalMax="60"': 'action.resumeIntervalMax="1"'})

    def rsyslog(self, name, replacements):
        """One of the two, to be stopped after the test."""
        daemon = Rsyslog(self.folder / f"rsyslog-{name}", f"rsyslog-{name}.conf",
                         {**replacements, "/etc/usbinfo": self.folder})
        daemon.start()
        self.addCleanup(lambda: machine.stop(daemon.process))
        return daemon

    def check_nothing_is_left(self):
        """Whatever the services have started has ended with them."""
        machine.wait_until(lambda: not machine.processes_with_mark(), "the end of all processes")

    def stored(self):
        """How many reports the store has; -1 where nobody can say."""
        return self.database.number("SELECT count(*) FROM report")

    def wait_until(self, condition, what):
        """As machine.wait_until, with what the programs have said where it fails."""
        try:
            return machine.wait_until(condition, what, machine.SECONDS_TO_WAIT + REPORTS / 20)
        except AssertionError as error:
            log = self.folder / "usbinfo-store.log"
            said = log.read_text(encoding="utf-8", errors="replace") if log.exists() else ""
            raise AssertionError(f"{error}; {self.stored()} reports are stored\n--- sender\n"
                                 f"{self.sender.messages()[-3000:]}\n--- collector\n"
                                 f"{self.collector.messages()[-3000:]}\n--- store\n{said[-3000:]}") from None

    def hand_over(self, *lines):
        """Leaves the lines for the sender, as the service of the machine leaves a file."""
        self.lines.extend(lines)
        with open(self.spool / "report.json", "a", encoding="utf-8") as file:
            file.write("".join(line + "\n" for line in lines))

    def show(self, host):
        """The document that the store has of the host."""
        result = machine.run([STORE, "show", host, "--format", "json", "--db", self.database.url()])
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout


class StreamTest(PushTest):
    """With the right certificates."""

    def kill_store(self):
        """The program that the collector's rsyslogd feeds."""
        os.kill(self.wait_until(self.collector.store_process, "usbinfo-store"), signal.SIGKILL)

    def restart_database(self):
        """Connections are cut."""
        self.database.stop()
        self.database.start()

    def kill_collector(self):
        """rsyslogd on the collector, when it has taken all that it takes before the store confirms the first report. What
        the store still stores after that, it cannot confirm."""
        store = machine.wait_until(self.collector.store_process, "usbinfo-store")
        os.kill(store, signal.SIGSTOP)
        daemons = [self.sender.process.pid, self.collector.process.pid]
        self.wait_until(lambda: machine.do_nothing(daemons), "the end of all traffic")
        self.collector.kill()
        os.kill(store, signal.SIGCONT)
        self.collector.start()

    def test_each_report_is_stored_once_whatever_is_killed(self):
        troubles = [self.kill_store, self.restart_database, self.kill_collector]
        share = REPORTS // len(troubles)
        for index, trouble in enumerate(troubles):
            begin = index * share
            self.hand_over(*(machine.small_report(f"host{number % HOSTS}", number // HOSTS)
                             for number in range(begin, begin + share)))
            self.wait_until(lambda begin=begin: self.stored() > begin, "the first report of this part")
            trouble()
            self.assertLess(self.stored(), begin + share, f"{trouble.__name__} came after the last report")
        total = len(self.lines)
        self.wait_until(lambda: self.stored() >= total, "the last report")
        machine.stop(self.sender.process)
        machine.stop(self.collector.process)
        self.assertEqual(self.stored(), total)
        self.assertEqual(self.database.number("SELECT count(*) FROM late"), 0)
        self.assertEqual(self.database.number("SELECT count(*) FROM refused"), 0)
        self.assertEqual(self.database.number("SELECT count(DISTINCT serial) FROM item"), total)
        last = {inventory["system"]["name"]: inventory for inventory in map(json.loads, self.lines)}
        for host, inventory in last.items():
            self.assertEqual(json.loads(self.show(host)), inventory)

    def test_a_report_of_a_megabyte_arrives_as_it_was_sent(self):
        inventory = machine.desktop()
        ports = inventory["classes"]["KALDO_USBPort"]
        example = ports[0]
        for number in range(3500):
            # Bytes that programs for log lines are known to change.
            name = f"Port {number:04} \u007f\u00e9\u20ac #011 \\n %msg% \t"
            ports.append({**example, "DeviceID": name, "Name": name})
        line = machine.report("big", 0, inventory)
        self.assertGreater(len(line), 1 << 20)
        self.hand_over(line)
        self.wait_until(lambda: self.stored() == 1, "the report")
        self.assertEqual(json.loads(self.show("big")), json.loads(line))

    def test_what_is_no_report_does_not_hold_up_the_next(self):
        self.hand_over("no report", '{"schema": "usbinfo.inventory/2"', machine.report("web1"))
        self.wait_until(lambda: self.stored() == 1, "the report")
        self.assertEqual(self.database.number("SELECT count(*) FROM refused"), 2)


class WrongCollectorTest(PushTest):
    """Another host that has a certificate of the same authority."""

    collector_name = "web2.example.org"

    def test_a_collector_with_another_name_gets_no_report(self):
        self.hand_over(machine.report("web1"))
        self.wait_until(lambda: "authentication error" in self.sender.messages(), "the refusal")
        self.assertIn("web2.example.org", self.sender.messages())
        self.assertEqual(self.stored(), 0)


class WrongMachineTest(PushTest):
    """A machine with a certificate of the same authority, but a name of elsewhere."""

    machine_name = "web1.example.net"

    def test_a_machine_with_another_name_cannot_report(self):
        self.hand_over(machine.report("web1"))
        self.wait_until(lambda: "authentication error" in self.collector.messages(), "the refusal")
        self.assertIn("web1.example.net", self.collector.messages())
        self.assertEqual(self.stored(), 0)


if __name__ == "__main__":
    STORE = machine.prepare()
    if "--reports" in sys.argv:
        at = sys.argv.index("--reports")
        REPORTS = int(sys.argv[at + 1])
        del sys.argv[at:at + 2]
    unittest.main(verbosity=2)
