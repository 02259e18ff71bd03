#!/usr/bin/env python3
"""The check of includes finds each violation planted in a tree of one file, where it stands, and nothing in good ones."""
import pathlib
import tempfile
import unittest

import check_includes

HEADER = "// What it is for.\n#pragma once\n"


def check(file, text):
    """What the check says about a tree that holds nothing else."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, file)
        path.parent.mkdir(parents=True)
        path.write_text(text, encoding="utf-8")
        return check_includes.check(pathlib.Path(folder))


class CheckTest(unittest.TestCase):
    def test_finds_what_is_planted(self):
        for file, include, wrong in [
                ("host/A.h", '"provider/TUsb.h"', "host may not include provider/TUsb.h"),
                ("usbfs/deeper/A.h", '"standin/Host.h"', "usbfs may not include standin/Host.h"),
                ("usbfs/A.h", '"plugin/TUSBInfoCallbacks.h"', "usbfs may not include plugin/TUSBInfoCallbacks.h"),
                ("provider/A.h", "<standin/Host.h>", "provider may not include standin/Host.h"),
                ("provider/A.h", "<unistd.h>", "provider may not use the library of <unistd.h>"),
                ("plugin/A.h", "<fmt/format.h>", "plugin may not use the library of <fmt/format.h>"),
                ("plugin/Vocabulary.h", "<vector>", "the vocabulary includes only <string>"),
                ("plugin/Vocabulary.h", '"host/HostApi.h"', "the vocabulary includes only <string>"),
                ("cli/text/A.h", '"cli/model/Inventory.h"', "cli/text may not include cli/model/Inventory.h"),
                ("cli/model/A.h", '"standin/Host.h"', "cli/model may not include standin/Host.h"),
                ("cli/model/A.h", '"cli/model/FromHost.h"', "cli/model may not include cli/model/FromHost.h"),
                ("cli/format/html/A.h", '"cli/format/OutputFormat.h"',
                 "cli/format may not include cli/format/OutputFormat.h"),
                ("cli/diff/A.h", '"tests/A.h"', "tests/A.h is no path from the top to a folder of the table"),
                ("cli/diff/A.h", "<tests/A.h>", "tests/A.h is no path from the top to a folder of the table"),
                ("cli/diff/A.h", '"../text/Text.h"', "../text/Text.h is no path from the top to a folder of the table"),
                ("cli/diff/A.h", "<nlohmann/json.hpp>",
                 "a header may not include <nlohmann/json.hpp>; declare what it needs"),
                ("system/A.h", "NAME", "the name of an include must be written out")]:
            with self.subTest(file=file, include=include):
                self.assertEqual(check(file, f"{HEADER}  #  include {include}\n"), [f"{file}:3: {wrong}"])

    def test_takes_what_is_allowed(self):
        for file, include in [
                ("host/A.h", "<boost/shared_ptr.hpp>"), ("host/A.h", "<string_view>"), ("host/A.h", "<string.h>"),
                ("usbfs/A.h", '"plugin/Vocabulary.h"'), ("plugin/Vocabulary.h", "<string>"),
                ("cli/model/FromHost.h", '"standin/Host.h"'), ("cli/format/OutputFormat.h", '"cli/format/JsonFormat.h"'),
                ("cli/format/html/A.h", '"cli/format/RenderOptions.h"'), ("cli/text/A.cpp", "<nlohmann/json.hpp>"),
                ("standin/A.h", "<unistd.h>"), ("tests/A.h", '"cli/main.h"')]:
            with self.subTest(file=file, include=include):
                self.assertEqual(check(file, f"{HEADER}#include {include}\n"), [])

    def test_finds_a_file_of_another_form(self):
        self.assertEqual(check("host/A.h", "#pragma once\n"),
                         ["host/A.h:1: a header begins with a comment that says what it is for"])
        self.assertEqual(check("host/A.h", "// What it is for.\n"), ["host/A.h:1: lacks #pragma once"])
        self.assertEqual(check("host/A.hpp", HEADER), ["host/A.hpp:1: sources end in .h or .cpp"])
        self.assertEqual(check("cli/new/A.h", HEADER), ["cli/new/A.h:1: belongs to no row of the table"])


if __name__ == "__main__":
    unittest.main()
