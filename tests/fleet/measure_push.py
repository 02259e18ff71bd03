#!/usr/bin/env python3
"""Measures how many reports a second come from one machine's rsyslogd over RELP with TLS into PostgreSQL, through one loader.

Usage: measure_push.py
The environment variable USBINFO_STORE names the program.
"""
import time
import unittest

import machine
import push_test

HOSTS = 3000


class Rates(push_test.PushTest):
    """Not a test: it prints figures."""

    def rate(self, lines):
        """Of the reports, from handing them over to the last one in the store."""
        total = self.stored() + len(lines)
        began = time.monotonic()
        self.hand_over(*lines)
        self.wait_until(lambda: self.stored() >= total, "the last report")
        return len(lines) / (time.monotonic() - began)

    def test_rates(self):
        self.rate([machine.report("the first one", 0)])
        size = len(machine.report("host0", 0)) / 1000
        for number, what in enumerate(("first reports", "reports that repeat the first ones")):
            reports = [machine.report(f"host{host}", number) for host in range(HOSTS)]
            print(f"{HOSTS} {what}, {size:.0f} kB each, over RELP with TLS: {self.rate(reports):.0f} a second", flush=True)


if __name__ == "__main__":
    push_test.STORE = machine.prepare()
    unittest.main(defaultTest="Rates")
