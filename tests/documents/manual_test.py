"""The manual page against the command: its options, its form, its examples.

Takes the command from USBINFO and the project's folder from SOURCE.
"""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

import options

USBINFO = pathlib.Path(os.environ["USBINFO"])
SOURCE = pathlib.Path(os.environ["SOURCE"])
PAGE = SOURCE / "docs" / "usbinfo.1"
CAPTURE = SOURCE / "tests" / "data" / "captures" / "vm-desktop-debugfs.txt"

HELP = """Shows.
Usage: usbinfo [OPTIONS]

Options:
  -h,--help             Print this help
  --format FORMAT       How to print [tree]:
                        tree (on a
                        terminal), json,
                        mof
  -d VID:[PID]          Only these
  --class NAME ...      Print only this class; may be repeated:
                        or not
  --mask-key FILE Needs: --mask-serials
                        The key
  -v,--verbose          More
                        of it

Subcommands:
  show                  Print the inventory
  schema                Print the classes
"""

MANUAL = """.Sh NAME
.It Fl no
.Sh OPTIONS
.Ss Options of show
.Bl -tag
.It Fl h , Fl -help
Help with
.Fl x .
.It Fl -format Ar FORMAT
.Bl -tag
.It Cm tree
a tree
.It Cm json
.Cm mof ,
.El
.It Fl d Ar VID : Ns Op Ar PID
.It Fl s Oo Ar BUS Oc : Ns Op Ar DEV
.El
.Ss Options of diff
.It Fl -output Ar FILE
.Sh FILES
.It Fl -none
"""


def run_usbinfo(*arguments):
    """Return what the command printed."""
    return subprocess.run([USBINFO, *arguments], check=True, text=True,
                          stdout=subprocess.PIPE).stdout


class ReadersTest(unittest.TestCase):
    """The readers of both texts, on texts made up for them."""

    def test_help_is_read_with_names_values_and_choices(self):
        self.assertEqual(options.from_help(HELP), {
            ("-h", "--help"): ("", frozenset()),
            ("--format",): ("FORMAT", {"tree", "json", "mof"}),
            ("-d",): ("VID:[PID]", frozenset()),
            ("--class",): ("NAME", {"or", "not"}),
            ("--mask-key",): ("FILE", frozenset()),
            ("-v", "--verbose"): ("", frozenset())})

    def test_help_is_read_with_its_subcommands(self):
        self.assertEqual(options.subcommands_of_help(HELP),
                         ["show", "schema"])

    def test_manual_is_read_section_by_section(self):
        self.assertEqual(options.from_manual(MANUAL), {
            "show": {("-h", "--help"): ("", frozenset()),
                     ("--format",): ("FORMAT", {"tree", "json", "mof"}),
                     ("-d",): ("VID:[PID]", frozenset()),
                     ("-s",): ("[BUS]:[DEV]", frozenset())},
            "diff": {("--output",): ("FILE", frozenset())}})

    def test_every_kind_of_difference_is_told(self):
        none = frozenset()
        wanted = {("-a",): options.Option("", none),
                  ("-b",): options.Option("FILE", none),
                  ("-c",): options.Option("X", frozenset({"on", "off"})),
                  ("-e",): options.Option("", none)}
        found = {("-b",): options.Option("NAME", none),
                 ("-c",): options.Option("X", frozenset({"on"})),
                 ("-e",): options.Option("", none),
                 ("-f",): options.Option("", none)}
        self.assertEqual(options.differences(wanted, found), [
            "-a is missing",
            "-b takes 'FILE', not 'NAME'",
            "-c may be ['off', 'on'], not ['on']",
            "-f is no option of the command"])


class OptionsTest(unittest.TestCase):
    """The page has the options of the help, and none besides."""

    def setUp(self):
        self.page = options.from_manual(PAGE.read_text(encoding="utf-8"))

    def differences(self, command, *arguments):
        wanted = options.from_help(run_usbinfo(*arguments, "--help"))
        self.assertIn(("-h", "--help"), wanted)
        return options.differences(wanted, self.page[command])

    def test_sections_are_those_of_the_subcommands(self):
        self.assertEqual(tuple(self.page), options.SUBCOMMANDS)
        self.assertCountEqual(
            options.subcommands_of_help(run_usbinfo("--help")),
            options.SUBCOMMANDS)

    def test_show_is_the_command_itself(self):
        self.assertEqual(run_usbinfo("show", "--help"),
                         run_usbinfo("--help"))

    def test_show(self):
        self.assertEqual(self.differences("show"), [])

    def test_schema(self):
        self.assertEqual(self.differences("schema", "schema"), [])

    def test_diff(self):
        self.assertEqual(self.differences("diff", "diff"), [])


class FormTest(unittest.TestCase):
    """The page is sound and names what it should."""

    def test_sections_are_those_that_a_reader_looks_for(self):
        sections = re.findall(r"^\.Sh (.*)", PAGE.read_text(encoding="utf-8"),
                              re.MULTILINE)
        self.assertEqual(sections, [
            "NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT",
            "FILES", "EXIT STATUS", "EXAMPLES", "SEE ALSO", "CAVEATS"])

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

    # What looks at this machine, or at another one.
    ELSEWHERE = ("sudo ", "ssh ")

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
                self.assertEqual(done.returncode, 0, done.stderr)
        self.assertGreaterEqual(count, 8)

    def enter(self, manager):
        """Enter a context until the test ends."""
        self.addCleanup(manager.__exit__, None, None, None)
        return manager.__enter__()


if __name__ == "__main__":
    unittest.main()
