#!/usr/bin/env python3
"""Holds the source tree to the table below: who may include whom. Prints what breaks it, one "FILE:LINE: WHY" each, and
exits with 1; prints nothing and exits with 0 where nothing does.

Usage: check_includes.py SOURCE
"""
import pathlib
import re
import sys

# A row is a folder with all below it, or one unit (its .h and .cpp) with rules of its own; a file belongs to the row
# that names it most closely. It may include its own row and the rows listed, and nothing else of ours.
MAY_INCLUDE = {
    "host": [],
    "provider": ["host"],
    "usbfs": ["provider", "host", "plugin/Vocabulary"],
    "inventory": ["usbfs", "provider", "host", "plugin/Vocabulary"],
    "association": ["provider", "host", "plugin/Vocabulary"],
    "plugin": ["inventory", "association", "provider", "host", "plugin/Vocabulary"],
    "plugin/Vocabulary": [],
    "system": [],
    "schema": ["host"],
    "standin": ["host", "schema", "system"],
    "kernel": ["system"],
    "cli/text": ["system"],
    "cli/model": ["schema", "kernel", "cli/model/UsbIds", "cli/text"],
    "cli/model/UsbIds": ["cli/model", "cli/text", "system"],
    "cli/model/FromHost": ["standin", "host", "schema", "cli/model", "cli/text"],
    "cli/diff": ["cli/model", "cli/text"],
    "cli/policy": ["cli/model", "cli/text"],
    "cli/format": ["cli/model", "cli/policy", "cli/text", "schema"],
    "cli/format/OutputFormat": ["cli/format", "cli/model", "cli/text", "schema"],
    "cli/collect": ["standin", "kernel", "system", "schema", "host", "cli/model", "cli/model/FromHost", "cli/text",
                    "cli/collect/SerialMask"],
    "cli/option": ["cli/text"],
    "cli/watch": ["cli/diff", "cli/model", "cli/policy", "cli/text", "kernel"],
    "cli/command": ["cli/collect", "cli/diff", "cli/format", "cli/format/OutputFormat", "cli/model",
                    "cli/model/FromHost", "cli/model/UsbIds", "cli/option", "cli/policy", "cli/text", "cli/watch",
                    "schema", "standin", "system"],
    # Of collecting, the store masks serial numbers only.
    "cli/collect/SerialMask": ["cli/collect", "cli/text", "system"],
    "store": ["cli/diff", "cli/format", "cli/format/OutputFormat", "cli/model", "cli/model/UsbIds", "cli/option",
              "cli/policy", "cli/text", "cli/collect/SerialMask", "schema", "system"],
    "cli/main": ["cli/command", "cli/option", "cli/text", "cli/collect", "system"],
}
# What the module is made of: its rows know no library but Boost and the standard one.
MODULE_ROWS = ("host", "provider", "usbfs", "inventory", "association", "plugin")
# Headers that take the compiler seconds, and our headers that include them all the same.
COSTLY = {"nlohmann/json.hpp", "CLI/CLI.hpp", "tao/pegtl.hpp"}
MAY_BE_COSTLY = set()
# Folders at the top with sources that are no part of the products.
OTHER_FOLDERS = {"bench", "build", "examples", "tests"}

SOURCES = {".h", ".hpp", ".hh", ".inl", ".ipp", ".cpp", ".cc", ".cxx"}
DIRECTIVE = re.compile(r'\s*#\s*(?:include|include_next|import)\b\s*(?:"([^"]*)"|<([^>]*)>)?')
STANDARD = re.compile(r"[a-z_]+|(?:assert|ctype|errno|float|limits|locale|math|signal|stdarg|stddef|stdint|stdio|stdlib"
                      r"|string|time|wchar)\.h")


def row_of(file):
    """The row that the file or include belongs to; None where the table lacks it."""
    unit = re.sub(r"\.\w+$", "", file)
    rows = [row for row in MAY_INCLUDE if unit == row or file.startswith(row + "/")]
    return max(rows, key=len, default=None)


def violation(file, quoted, bracketed):
    """What is wrong with one include of `file`; None where nothing is."""
    row, name = row_of(file), quoted or bracketed
    if not name:
        return "the name of an include must be written out"
    if row == "plugin/Vocabulary" and bracketed != "string":
        return "the vocabulary includes only <string>"
    if name in COSTLY and file.endswith(".h") and file not in MAY_BE_COSTLY:
        return f"a header may not include <{name}>; declare what it needs"
    target = row_of(name)
    if target:
        allowed = target == row or target in MAY_INCLUDE[row]
        return None if allowed else f"{row} may not include {name}"
    if quoted or name.split("/")[0] in OTHER_FOLDERS:
        return f"{name} is no path from the top to a folder of the table"
    is_module = row.split("/")[0] in MODULE_ROWS
    if is_module and not name.startswith("boost/") and not STANDARD.fullmatch(name):
        return f"{row} may not use the library of <{name}>"
    return None


def check_file(root, file):
    """What breaks the rules in one file."""
    if row_of(file) is None:
        return [f"{file}:1: belongs to no row of the table"]
    lines = (root / file).read_text(encoding="utf-8").splitlines()
    found = []
    if pathlib.PurePath(file).suffix not in (".h", ".cpp"):
        found.append(f"{file}:1: sources end in .h or .cpp")
    if file.endswith(".h") and not re.match(r"//.*\w", lines[0] if lines else ""):
        found.append(f"{file}:1: a header begins with a comment that says what it is for")
    if file.endswith(".h") and "#pragma once" not in lines:
        found.append(f"{file}:1: lacks #pragma once")
    for number, line in enumerate(lines, 1):
        directive = DIRECTIVE.match(line)
        wrong = directive and violation(file, *directive.groups())
        if wrong:
            found.append(f"{file}:{number}: {wrong}")
    return found


def check(root):
    """What breaks the rules in the tree below `root`, by file and line."""
    tops = [path for path in root.iterdir() if path.is_dir() and path.name not in OTHER_FOLDERS]
    files = sorted(str(path.relative_to(root)) for top in tops if not top.name.startswith(".")
                   for path in top.rglob("*") if path.suffix in SOURCES)
    return [wrong for file in files for wrong in check_file(root, file)]


if __name__ == "__main__":
    violations = check(pathlib.Path(sys.argv[1]))
    print("\n".join(violations), end="\n" if violations else "")
    sys.exit(1 if violations else 0)
