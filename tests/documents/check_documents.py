#!/usr/bin/env python3
"""Holds the documents to what the commands do: every command line of theirs that calls one is run, as written but for
the build that is tested. Each document has a store of its own; without usbinfo-store, which takes libraries that not
every machine has, its lines are left out, as are those that name a PostgreSQL server. Machines to collect from are
played by a program in the place of ssh. Where a line begins with "$ ", what stands below it is what it must print, "..."
for any lines.

Usage: check_documents.py COMMAND SOURCE
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

# As the documents call it, built or installed.
CALL = re.compile(r"(build/release/)?usbinfo(-store)? \S")
# ClusterShell's group @racks:3.
GROUPS = "[Main]\ndefault: racks\n[racks]\nmap: echo rack$GROUP-[1-4]\nall: echo rack[1-3]-[1-4]\n"
# Not the tests' machine but the one in the document is shown, whatever it has; the names file is none.
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "USBINFO_IDS": "", "COLUMNS": "80"}


def blocks(text):
    """The content of the fenced blocks."""
    return re.findall(r"^```\w*\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def calls(block):
    """The command lines with what they print, None where the document does not show it; those that a pipe or backslash
    carries on are joined."""
    lines = re.sub(r"(\||\\)\n\s+", lambda end: end.group(1).strip("\\") + " ", block).splitlines(keepends=True)
    if not block.startswith("$ "):
        return [(line.strip(), None) for line in lines if CALL.match(line) or line.startswith("cat ")]
    found = []
    for line in lines:
        if line.startswith("$ "):
            found.append((line[2:].strip(), ""))
        else:
            found[-1] = (found[-1][0], found[-1][1] + line)
    return found


def matches(expected, printed):
    """Whether the text is the expected one."""
    pattern = "".join("(.*\n)*?" if line == "...\n" else re.escape(line) for line in expected.splitlines(keepends=True))
    return re.fullmatch(pattern, printed) is not None


def run(line, expected, folder, data):
    """Runs the line by a shell, with `data` as the folder of the store; gives what went wrong."""
    environment = {**ENVIRONMENT, "PATH": f"{folder}/build/release:{os.environ['PATH']}",
                   "XDG_DATA_HOME": f"{folder}/{data}", "CLUSTERSHELL_CFGDIR": f"{folder}/build"}
    result = subprocess.run(["bash", "-o", "pipefail", "-c", line], cwd=folder, env=environment,
                            capture_output=True, text=True, timeout=60, check=False)
    # On a machine without USB there is nothing to show; two inventories may differ; nothing may be found.
    is_critical = result.returncode == 2 and result.stdout.startswith("USB CRITICAL: ")
    if result.returncode > 1 and not is_critical:
        return f"exit status {result.returncode}: {result.stderr}"
    if expected is not None and not matches(expected, result.stdout + result.stderr):
        return f"prints\n{result.stdout}{result.stderr}"
    return None


def programs(command):
    """The commands that are built."""
    return [path for path in (pathlib.Path(command), pathlib.Path(f"{command}-store")) if path.exists()]


def mirror(command, source, folder):
    """Makes the folder look like the top of the sources after a build, without what the commands may write to."""
    (folder / "build/release").mkdir(parents=True)
    for program in programs(command):
        (folder / "build/release" / program.name).symlink_to(program)
    for entry in source.iterdir():
        if entry.name != "build":
            (folder / entry.name).symlink_to(entry)


def play_machines(folder):
    """Makes every machine that ssh could connect to print the same inventory."""
    (folder / "build/groups.conf").write_text(GROUPS, encoding="utf-8")
    ssh = folder / "build/release/ssh"
    ssh.write_text(f"#!/bin/sh\nexec head -n 1 {folder}/examples/machines.jsonl\n", encoding="utf-8")
    ssh.chmod(0o755)


def can_run(command, line):
    """Whether the line can be tried with what is there."""
    return "postgresql:" not in line and ("usbinfo-store" not in line or len(programs(command)) == 2)


def main():
    command, source = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
    count, failures = 0, []
    with tempfile.TemporaryDirectory() as folder:
        mirror(command, source, pathlib.Path(folder))
        play_machines(pathlib.Path(folder))
        for document in [source / "README.md", *sorted(source.glob("docs/*.md"))]:
            for block in blocks(document.read_text(encoding="utf-8")):
                for line, expected in calls(block):
                    if not can_run(command, line):
                        continue
                    count += 1
                    failure = run(line, expected, folder, f"build/{document.stem}")
                    if failure:
                        failures.append(f"{document.name}: {line}\n{failure}")
    print("\n".join(failures) or f"{count} commands run")
    sys.exit(bool(failures) or count < 10)


if __name__ == "__main__":
    main()
