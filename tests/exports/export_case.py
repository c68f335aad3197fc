# SPDX-License-Identifier: MIT
"""A result database with rows of the test's choice, and the program that exports them."""
import csv
import json
import os
import sqlite3
import subprocess
import tempfile
import unittest

HOST = os.environ["HOST_PROGRAM"]
STATEMENTS = subprocess.check_output([os.environ["PRINT_SCHEMA"]], text=True).splitlines()
TABLES = ["time_reminders", "place_reminders", "contact_triggers", "latest_audio_search", "graphed_cache",
          "cache_files", "cookies", "domstore", "searches"]
FORMATS = ["csv", "jsonl", "xlsx", "timesketch", "bodyfile", "l2tcsv", "kml", "geojson", "html"]


class export_case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = folder.name
        self.result = self.base + "/result"
        self.own_folder = self.result + "/Artifacts_Result/Cortana"
        self.exports = self.own_folder + "/exports"
        os.makedirs(self.own_folder)
        self.database = sqlite3.connect(self.own_folder + "/Cortana.sqlite", isolation_level=None)
        self.addCleanup(self.database.close)
        self.database.execute("pragma synchronous=off")
        for statement in STATEMENTS:
            self.database.execute(statement)

    def insert(self, table, rows):
        """rows: dictionaries, column -> value. bytes in a pair ("text", bytes) become a text of those bytes."""
        self.database.execute("begin")
        for row in rows:
            places = ["cast(? as text)" if isinstance(value, tuple) else "?" for value in row.values()]
            values = [value[1] if isinstance(value, tuple) else value for value in row.values()]
            self.database.execute(f"insert into {table}({','.join(row)}) values({','.join(places)})", values)
        self.database.execute("commit")

    def columns(self, table):
        return [row[1] for row in self.database.execute(f"pragma table_info({table})")]

    def export(self, formats, *options, code=0, **process):
        words = [HOST, "export", "--json", "--format", formats, *options, self.result]
        answer = subprocess.run(words, capture_output=True, **process)
        self.assertEqual(answer.returncode, code, answer.stderr)
        return json.loads(answer.stdout) if answer.stdout else None

    def path(self, name):
        return self.exports + "/" + name

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def csv_rows(self, name, encoding="utf-8"):
        with open(self.path(name), encoding=encoding, newline="") as file:
            return list(csv.DictReader(file, strict=True))

    def json_lines(self, name):
        return [json.loads(line) for line in self.content(name).split(b"\n")[:-1]]
