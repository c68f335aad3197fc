# SPDX-License-Identifier: MIT
"""Small sources, and the program that works on many of them."""
import json
import os
import shutil
import sqlite3
import subprocess
import tempfile
import unittest

HOST = os.environ["HOST_PROGRAM"]
TOP = os.environ["TOP"]
PACKAGE = "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/"
DATABASE = "/Artifacts_Result/Cortana/Cortana.sqlite"
LINKS = "/Artifacts_Result/Cortana/Cortana_links.sqlite"
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None  # a fast folder, where there is one
# Three families of evidence; the web cache would take most of the time and shows nothing more.
TABLES = ["time_reminders", "place_reminders", "latest_audio_search", "searches"]


class batch_case(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sample = tempfile.TemporaryDirectory(dir=MEMORY)
        cls.addClassCleanup(cls.sample.cleanup)
        subprocess.check_call([os.environ["WRITE_SAMPLE"], cls.sample.name])

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=MEMORY)
        self.addCleanup(folder.cleanup)
        self.set_base(folder.name)
        os.mkdir(self.temporary)

    def set_base(self, base):
        self.base = base
        self.manifest = self.base + "/m.jsonl"
        self.out = self.base + "/out"
        self.temporary = self.base + "/tmp"
        self.environment = {**os.environ, "TMPDIR": self.temporary}

    def make_source(self, name, user="anna"):
        """A source of one profile, below ev/."""
        source = self.base + "/ev/" + name
        profile = source + "/Users/" + name
        for part in ("NTUSER.DAT", PACKAGE + "ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat", PACKAGE + "LocalRecorder"):
            whole = self.sample.name + "/Users/" + user + "/" + part
            os.makedirs(os.path.dirname(profile + "/" + part), exist_ok=True)
            (shutil.copytree if os.path.isdir(whole) else shutil.copy2)(whole, profile + "/" + part)
        return source

    def write_manifest(self, sources):
        """sources: paths, or dictionaries of what differs from a plain line."""
        lines = []
        for number, source in enumerate(sources, 1):
            fields = source if isinstance(source, dict) else {"path": source}
            lines.append({"id": "s%d" % number, "type": "folder", "number": number, "tables": TABLES, **fields})
        self.write_lines(lines)

    def write_lines(self, lines):
        with open(self.manifest, "w", encoding="utf-8") as file:
            file.writelines((line if isinstance(line, str) else json.dumps(line)) + "\n" for line in lines)

    def host(self, *words, code=0, **process):
        answer = subprocess.run([HOST, *words], capture_output=True, text=True, timeout=120,
                                **{"env": self.environment, **process})
        self.assertEqual(answer.returncode, code, answer.stdout + answer.stderr)
        return answer

    def run_one(self, source, *words, code=0, **process):
        return self.host("batch", "run", "--manifest", self.manifest, "--id", source, "--out", self.out, *words,
                         code=code, **process)

    def status(self, code=0):
        return json.loads(self.host("batch", "status", "--json", self.out, code=code).stdout)

    def merge(self, *words, code=0):
        return self.host("batch", "merge", self.out, "-o", self.base + "/merged", *words, code=code)

    def content(self, result):
        """Every row of the plugin's tables and of the links, typed."""
        database = sqlite3.connect(result + DATABASE)
        self.addCleanup(database.close)
        rows = {table: database.execute("select *,typeof(INT) from %s order by INT" % table).fetchall() for table in TABLES}
        if os.path.exists(result + LINKS):
            database.execute("attach ? as links", (result + LINKS,))
            rows["links"] = database.execute("select * from reminder_links order by table_name,INT").fetchall()
            rows["not shown"] = database.execute(
                "select system_user,source_file,title,text from reminders_not_shown order by rowid").fetchall()
        return rows
