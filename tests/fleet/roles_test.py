#!/usr/bin/env python3
"""The roles of examples/fleet/roles.sql: each can do what it is for, and nothing else."""
import json
import pathlib
import tempfile
import unittest

import machine

STORE = None
TABLES = ("meta", "host", "node", "state", "report", "item", "comparison", "difference", "late", "refused")
# What roles can be granted on a table or, the first four, on columns of it.
PRIVILEGES = ("SELECT", "INSERT", "UPDATE", "REFERENCES", "DELETE", "TRUNCATE", "TRIGGER")
# All that usbinfo_load may change, in PostgreSQL's words.
UPDATABLE = {"host": {"machine", "mask"}, "item": {"until"}, "node": {"host_id", "tried", "reason"},
             "refused": {"last_time", "times", "host", "source", "reason"}}
# Of these it reads only what finds a row.
FINDABLE = {"late": {"host_id", "collected", "hash"}, "refused": {"hash"} | UPDATABLE["refused"],
            "node": {"name"} | UPDATABLE["node"]}


class RolesTest(unittest.TestCase):
    """On a store with a report in each table."""

    @classmethod
    def setUpClass(cls):
        machine.require("psql")
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.database = machine.Postgres(cls.folder)
        cls.addClassCleanup(cls.database.stop)
        cls.database.make_store(STORE)

    def store(self, user, *arguments, text=None):
        """Runs usbinfo-store as that role."""
        return machine.run([STORE, *arguments, "--db", self.database.url(user)], input=text)

    def rows(self, sql):
        """The rows as tuples of texts."""
        result = self.database.psql(sql)
        self.assertEqual(result.returncode, 0, result.stderr)
        return [tuple(line.split("|")) for line in result.stdout.splitlines()]

    def test_the_loader_loads_whatever_comes(self):
        first, second = machine.report("web1", 1), machine.report("web1", 3)
        changed = second.replace("KBD-0001", "KBD-0002")
        late = machine.report("web1", 2)
        text = "\n".join(["no report", first, changed, changed, "no report", late, late])
        result = self.store("usbinfo_load", "load", "-", "--format", "json", text=text)
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(json.loads(result.stdout)["loaded"],
                         [{"changed": 2, "unchanged": 0, "known": 2, "late": 1, "refused": 2}])

    def test_the_reader_reads_and_cannot_load(self):
        self.assertEqual(self.store("owner", "load", "-", text=machine.report("web2", 1)).returncode, 0)
        self.assertIn('"web2"', self.store("usbinfo_read", "hosts", "--format", "json").stdout)
        self.assertEqual(self.store("usbinfo_read", "find", "--kind", "keyboard").returncode, 0)
        shown = self.store("usbinfo_read", "show", "web2", "--format", "json")
        self.assertEqual(json.loads(shown.stdout), json.loads(machine.report("web2", 1)))
        refused = self.store("usbinfo_read", "load", "-", text=machine.report("web3", 1))
        self.assertEqual(refused.returncode, 2)
        self.assertIn("permission denied", refused.stderr)
        self.assertEqual(self.store("usbinfo_load", "forget", "web2").returncode, 2)

    def test_no_role_has_more_than_it_is_said_to_have(self):
        granted = set(self.rows(
            "SELECT role, relname, attname, privilege FROM pg_class JOIN pg_attribute ON attrelid = pg_class.oid "
            "CROSS JOIN unnest(ARRAY['usbinfo_load', 'usbinfo_read']) AS role "
            f"CROSS JOIN unnest(ARRAY{list(PRIVILEGES[:4])}) AS privilege "
            "WHERE relnamespace = 'public'::regnamespace AND relkind IN ('r', 'v') AND attnum > 0 "
            "AND NOT attisdropped AND has_column_privilege(role, attrelid, attnum, privilege)"))
        columns = set(self.rows(
            "SELECT relname, attname FROM pg_class JOIN pg_attribute ON attrelid = pg_class.oid "
            "WHERE relnamespace = 'public'::regnamespace AND relkind IN ('r', 'v') AND attnum > 0 "
            "AND NOT attisdropped"))
        self.assertLessEqual(set(TABLES), {table for table, _ in columns})
        expected = {("usbinfo_read", *column, "SELECT") for column in columns}
        for table, column in columns:
            if table in ("meta", "host", "state", "report", "item") or column in FINDABLE.get(table, ()):
                expected.add(("usbinfo_load", table, column, "SELECT"))
            if table in TABLES and table != "meta":
                expected.add(("usbinfo_load", table, column, "INSERT"))
            if column in UPDATABLE.get(table, ()):
                expected.add(("usbinfo_load", table, column, "UPDATE"))
        self.assertEqual(granted, expected)
        self.assertEqual(self.rows(
            "SELECT role, relname, privilege FROM pg_class "
            "CROSS JOIN unnest(ARRAY['usbinfo_load', 'usbinfo_read']) AS role "
            f"CROSS JOIN unnest(ARRAY{list(PRIVILEGES[4:])}) AS privilege "
            "WHERE relnamespace = 'public'::regnamespace AND relkind IN ('r', 'v') "
            "AND has_table_privilege(role, pg_class.oid, privilege)"), [])

    def test_no_role_gets_round_it(self):
        for user in ("usbinfo_load", "usbinfo_read"):
            for sql in ("DELETE FROM report", "TRUNCATE report CASCADE", "DROP TABLE report", "DROP VIEW device",
                        "UPDATE item SET content = '{}'", "UPDATE meta SET schema_version = 9",
                        "SELECT document FROM late" if user == "usbinfo_load" else "INSERT INTO host (name) VALUES ('x')",
                        "ALTER TABLE host ADD COLUMN x TEXT", "CREATE TABLE public.x (y INTEGER)", "CREATE ROLE x",
                        "SET ROLE owner", "COPY meta TO PROGRAM 'true'"):
                with self.subTest(user=user, sql=sql):
                    result = self.database.psql(sql, user)
                    self.assertNotEqual(result.returncode, 0)
                    self.assertRegex(result.stderr, "permission denied|must be owner|must be superuser|no privileges")

    def test_the_file_can_be_run_again(self):
        self.database.make_store(STORE)
        self.test_no_role_has_more_than_it_is_said_to_have()


if __name__ == "__main__":
    STORE = machine.prepare()
    unittest.main(verbosity=2)
