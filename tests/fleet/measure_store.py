#!/usr/bin/env python3
"""Measures usbinfo-store with generated fleets, on SQLite and on a PostgreSQL server of its own: first loads, unchanged
reports, a year of daily reports, the questions that people ask, and memory. Prints tables as docs/testing.md has them.

Usage: measure_store.py [--machines N] [--year-machines N] [--days N]
The environment variable USBINFO_STORE names the program. All files are in a temporary folder, which is deleted.
"""
import argparse
import os
import pathlib
import statistics
import subprocess
import tempfile
import time

import machine

HERE = pathlib.Path(__file__).resolve().parent
STORE = None
LOADERS = 4
DAY = 24 * 60 * 60
QUESTIONS = {
    "`find --serial SERIAL`": ["find", "--serial", "SERIAL"],
    "`find --kind \"mass storage\"`": ["find", "--kind", "mass storage"],
    "`find --name reader`": ["find", "--name", "reader"],
    "`changes --since 1d`": ["changes", "--since", "1d"],
    "`show HOST`": ["show", "HOST"],
    "`show HOST --at 180d`": ["show", "HOST", "--at", "180d"],
    "`hosts`": ["hosts"],
    "`hosts --silent-for 2d`": ["hosts", "--silent-for", "2d"],
}
TABLES = ("host", "state", "report", "item", "comparison", "difference")


def fleet(*arguments):
    """The command that makes the fleet."""
    return ["python3", "-B", HERE / "make_fleet.py", *map(str, arguments)]


def seconds_of(action):
    """How long it takes."""
    began = time.monotonic()
    action()
    return time.monotonic() - began


def wait(processes):
    """Waits for all of them; each must succeed."""
    for process in processes:
        if process.wait() != 0:
            raise AssertionError(f"{process.args} ends with {process.returncode}")


def load(db, inputs):
    """A loader for each input, at the same time."""
    wait([subprocess.Popen([STORE, "load", "--db", db], stdin=each, stdout=subprocess.DEVNULL) for each in inputs])


def write_parts(folder, arguments, parts):
    """Makes the fleet in so many files."""
    files = [folder / f"part{part}.jsonl" for part in range(1, parts + 1)]
    for part, file in enumerate(files, 1):
        with open(file, "wb") as output:
            subprocess.run(fleet(*arguments, "--part", f"{part}/{parts}"), stdout=output, check=True)
    return files


def load_files(db, files):
    """A loader for each file, at the same time."""
    opened = [open(file, "rb") for file in files]
    load(db, opened)
    for file in opened:
        file.close()


def peak_memory(db, file):
    """Of a loader of this file, in MiB."""
    with open(file, "rb") as source:
        process = subprocess.Popen([STORE, "load", "--db", db], stdin=source, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        raise AssertionError(f"load ends with {status}")
    return usage.ru_maxrss / 1024


def copy_seconds(server, folder):
    """How long PostgreSQL's own COPY takes for the rows that are in the store, into tables with the same indexes."""
    copies = []
    for table in TABLES:
        check(server.psql(f"COPY {table} TO '{folder}/{table}.copy'"))
        check(server.psql(f"CREATE TABLE copy_{table} (LIKE {table} INCLUDING ALL)"))
        copies.append(f"COPY copy_{table} FROM '{folder}/{table}.copy';")
    seconds = seconds_of(lambda: check(server.psql("".join(copies))))
    check(server.psql("".join(f"DROP TABLE copy_{table};" for table in TABLES)))
    return seconds


def check(result):
    """The SQL must have worked."""
    if result.returncode != 0:
        raise AssertionError(result.stderr)


def measure_loads(server, folder, machines):
    """First loads and unchanged reports, beside COPY."""
    until = int(time.time())
    stamp = [time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(until - days * DAY)) for days in (1, 0)]
    first = write_parts(folder, ["--machines", machines, "--until", stamp[0]], LOADERS)
    size = sum(file.stat().st_size for file in first)
    taken = seconds_of(lambda: load_files(server.url(), first))
    items = server.number("SELECT COUNT(*) FROM item WHERE section < 6")
    facts = server.number("SELECT COUNT(*) FROM item WHERE section >= 6")
    copied = copy_seconds(server, folder)
    print(f"{machines} machines, {items / machines:.0f} items and {facts / machines:.0f} records of the kernel each, "
          f"{size / 1e6:.0f} MB of JSON, {LOADERS} loaders, PostgreSQL:")
    print(f"  first load {taken:.1f} s, {machines / taken:.0f} machines a second; COPY of the same rows {copied:.1f} s, "
          f"ratio {taken / copied:.1f}", flush=True)
    second = write_parts(folder, ["--machines", machines, "--until", stamp[1]], LOADERS)
    taken = seconds_of(lambda: load_files(server.url(), second))
    print(f"  unchanged reports {taken:.1f} s, {machines / taken:.0f} a second", flush=True)


def measure_memory(folder, machines):
    """Whether it depends on the length of the stream."""
    for count in (machines // 100, machines):
        file = write_parts(folder, ["--machines", count], 1)[0]
        print(f"  {count} machines in one stream of {file.stat().st_size / 1e6:.1f} MB: "
              f"{peak_memory(folder / f'memory{count}.db', file):.1f} MiB at most", flush=True)


def load_year(db, machines, days, loaders):
    """Daily reports."""
    makers = [subprocess.Popen(fleet("--machines", machines, "--days", days, "--part", f"{part}/{loaders}"),
                               stdout=subprocess.PIPE) for part in range(1, loaders + 1)]
    load(db, [maker.stdout for maker in makers])
    for maker in makers:
        maker.stdout.close()
    wait(makers)


def ask(db, question, values):
    """The median of the time of ten runs of the whole command, in ms, and how many lines it prints."""
    command = [STORE, *(values.get(word, word) for word in question), "--db", db]
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    runs = []
    for _ in range(11):
        began = time.monotonic()
        result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=environment, check=False)
        runs.append((time.monotonic() - began) * 1000)
        if result.returncode not in (0, 1):
            raise AssertionError(command)
    return statistics.median(runs[1:]), result.stdout.count(b"\n")


def measure_questions(db, serial):
    """A row for each."""
    for name, question in QUESTIONS.items():
        taken, lines = ask(db, question, {"SERIAL": serial, "HOST": "host000007"})
        print(f"  | {name} | {taken:.0f} ms | {lines} lines |", flush=True)


def first_serial(db):
    """A serial number in the store."""
    found = subprocess.run([STORE, "find", "--kind", "mass storage", "--format", "csv", "--db", db],
                           stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()
    column = found[0].split(",").index("serial")
    return next(line.split(",")[column] for line in found[1:] if line.split(",")[column])


def measure_year(name, db, arguments, loaders, size):
    """A year of reports, and the questions then."""
    reports = arguments.year_machines * arguments.days
    taken = seconds_of(lambda: load_year(db, arguments.year_machines, arguments.days, loaders))
    print(f"{name}: {arguments.year_machines} machines, {arguments.days} daily reports each, loaded in {taken:.0f} s, "
          f"{reports / taken:.0f} a second with making them; {size() / 1e6:.0f} MB, {size() / reports:.0f} bytes a report",
          flush=True)
    measure_questions(db, first_serial(db))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--machines", type=int, default=10000)
    parser.add_argument("--year-machines", type=int, default=1000)
    parser.add_argument("--days", type=int, default=365)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        server = machine.Postgres(folder)
        check(machine.run([STORE, "migrate", "--db", server.url()]))
        measure_loads(server, folder, arguments.machines)
        print("Memory of load, SQLite:")
        measure_memory(folder, arguments.machines // 10)
        check(server.psql("CREATE DATABASE year"))
        year = server.url().replace("/postgres?", "/year?")
        measure_year("PostgreSQL", year, arguments, LOADERS, lambda: server.number("SELECT pg_database_size('year')"))
        file = folder / "year.db"
        measure_year("SQLite", file, arguments, 1, lambda: file.stat().st_size)
        server.stop()


if __name__ == "__main__":
    STORE = machine.prepare()
    main()
