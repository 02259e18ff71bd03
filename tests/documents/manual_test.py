"""The manual page as it is built: its form, its subcommands, its examples.

Takes the command from USBINFO, the project's folder from SOURCE and that of the
built documents from DOCUMENTS.
"""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

USBINFO = pathlib.Path(os.environ["USBINFO"])
SOURCE = pathlib.Path(os.environ["SOURCE"])
PAGE = pathlib.Path(os.environ["DOCUMENTS"]) / "usbinfo.1"
CAPTURE = SOURCE / "tests" / "data" / "captures" / "vm-desktop-debugfs.txt"

def run_usbinfo(*arguments):
    """Return what the command printed."""
    return subprocess.run([USBINFO, *arguments], check=True, text=True,
                          stdout=subprocess.PIPE).stdout


class FormTest(unittest.TestCase):
    """The page is sound and names what it should."""

    def test_sections_are_those_that_a_reader_looks_for(self):
        sections = re.findall(r"^\.Sh (.*)", PAGE.read_text(encoding="utf-8"),
                              re.MULTILINE)
        self.assertEqual(sections, [
            "NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT",
            "FILES", "EXIT STATUS", "EXAMPLES", "SEE ALSO", "CAVEATS"])

    def test_every_subcommand_is_named_and_has_its_options(self):
        page = PAGE.read_text(encoding="utf-8")
        _, _, listed = run_usbinfo("--help").partition("\nSubcommands:\n")
        names = re.findall(r"^  (\S+)", listed, re.MULTILINE)
        self.assertIn("diff", names)
        for name in names:
            self.assertIn(f"\n.It Cm {name}\n", page)
        self.assertEqual(
            re.findall(r"^\.Ss Options of (.*)", page, re.MULTILINE),
            [name for name in names if name != "help"])

    def check(self, *command):
        # Whether the pages referred to are installed is another matter.
        done = subprocess.run(
            [*command, PAGE], check=False, text=True,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_mandoc_finds_nothing(self):
        self.check("mandoc", "-T", "lint", "-W", "warning")

    def test_groff_finds_nothing(self):
        self.check("groff", "-mandoc", "-ww", "-T", "utf8")


def examples():
    """List the commands of the page's examples."""
    page = PAGE.read_text(encoding="utf-8")
    section = re.split(r"^\.Sh ", page.partition("\n.Sh EXAMPLES\n")[2],
                       flags=re.MULTILINE)[0]
    blocks = re.findall(r"^\.Bd -literal.*\n((?:[^.].*\n)+)", section,
                        re.MULTILINE)
    lines = "".join(blocks).replace("\\e\n", " ").splitlines()
    return [line.removeprefix("$ ") for line in lines]


class ExamplesTest(unittest.TestCase):
    """The examples run as they are written."""

    # What takes root's rights, or looks at another machine.
    ELSEWHERE = ("sudo ", "ssh ")
    # What looks at this machine, which may have no USB.
    HERE = ("usbinfo -v",)

    def test_examples_run_in_their_order(self):
        folder = pathlib.Path(self.enter(tempfile.TemporaryDirectory()))
        (folder / "devices.txt").write_bytes(CAPTURE.read_bytes())
        tools = folder / "tools"
        tools.mkdir()
        (tools / "usbinfo").symlink_to(USBINFO)
        path = f"{tools}:{os.environ['PATH']}"
        count = 0
        for command in examples():
            if command.startswith(self.ELSEWHERE):
                continue
            count += 1
            with self.subTest(command):
                done = subprocess.run(
                    ["bash", "-o", "pipefail", "-c", command], cwd=folder,
                    check=False, text=True, stdin=subprocess.DEVNULL,
                    stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                    env={**os.environ, "PATH": path})
                if command in self.HERE and done.returncode == 1:
                    self.assertIn("no USB device found", done.stderr)
                    continue
                self.assertEqual(done.returncode, 0, done.stderr)
        self.assertGreaterEqual(count, 8)

    def enter(self, manager):
        """Enter a context until the test ends."""
        self.addCleanup(manager.__exit__, None, None, None)
        return manager.__enter__()


if __name__ == "__main__":
    unittest.main()
