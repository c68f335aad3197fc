# SPDX-License-Identifier: MIT
"""What a run tells of itself and its evidence, and whether that is still so: run.json, check, verify, progress."""
import contextlib
import glob
import hashlib
import json
import os
import shutil
import sqlite3
import subprocess
import tempfile
import unittest

import jsonschema

HOST = os.environ["HOST_PROGRAM"]
with open(os.environ["TOP"] + "/docs/run_record.schema.json", encoding="utf-8") as file:
    SCHEMA = json.load(file)
HIVE = "/Users/anna/NTUSER.DAT"
WEBCACHE = "/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"
# What stands below a profile, by the tables that it is looked at for.
PLACES = {"searches": {"NTUSER.DAT"}, "cookies": {"WebCacheV01.dat"}, "place_reminders": {"CortanaCoreDb.dat"}}


def change_byte(path, offset):
    with open(path, "r+b") as opened:
        opened.seek(offset)
        byte = opened.read(1)[0]
        opened.seek(offset)
        opened.write(bytes([byte ^ 1]))


def digest(path):
    with open(path, "rb") as opened:
        return hashlib.sha256(opened.read()).hexdigest()


class run_case(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sample = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.sample.cleanup)
        subprocess.check_call([os.environ["WRITE_SAMPLE"], cls.sample.name + "/source"])

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = folder.name
        self.source = self.base + "/source"
        self.own_folder = self.base + "/result/Artifacts_Result/Cortana"
        shutil.copytree(self.sample.name + "/source", self.source)

    def run_host(self, words, code=0):
        """words: "{S}" and "{R}" in them are source and result."""
        filled = [word.replace("{S}", self.source).replace("{R}", self.base + "/result") for word in words.split(" ") if word]
        answer = subprocess.run([HOST, *filled], capture_output=True, timeout=120)
        self.assertEqual(answer.returncode, code, answer.stderr)
        return answer

    def record(self):
        with open(self.own_folder + "/run.json", encoding="utf-8") as opened:
            record = json.load(opened)
        jsonschema.Draft7Validator(SCHEMA).validate(record)
        return record


class test_run_json(run_case):
    def test_fields(self):
        summary = json.loads(self.run_host("extract --json --no-sandbox --user anna {S} {R}").stdout)
        record = self.record()
        self.assertEqual({name: record[name] for name in summary}, summary)
        self.assertEqual(record["arguments"][:4], ["extract", "--json", "--no-sandbox", "--user"])
        self.assertEqual(record["sandbox"]["asked"], False)
        self.assertEqual((record["sandbox"]["landlock"], record["sandbox"]["syscall_filter"]), ("off", "off"))
        self.assertEqual(record["machine"]["kernel"].split()[-1], os.uname().release)
        self.assertLessEqual(record["started"], record["ended"])
        database = self.own_folder + "/Cortana.sqlite"
        log = self.base + "/result/cortana_debug.log"
        self.assertEqual(record["written"], [{"path": path, "size": os.path.getsize(path), "sha256": digest(path)}
                                             for path in (database, log, self.own_folder + "/Cortana_links.sqlite")])
        files = [path for path in glob.glob(self.source + "/Users/anna/**", recursive=True) if os.path.isfile(path)]
        looked_at = {each["path"]: each for each in record["evidence"]}
        self.assertTrue(set(looked_at) <= set(files) and len(looked_at) > 5)
        for path, each in looked_at.items():
            self.assertEqual((each["sha256"], each["size"], each["problem"]),
                             (digest(path), os.path.getsize(path), None))
            self.assertEqual(each["modified"][-10:-1], "%09d" % (os.stat(path).st_mtime_ns % 10**9))
        webcache = looked_at[self.source + WEBCACHE]
        self.assertEqual((webcache["kind"], webcache["ese"]["damaged_pages"]), ("ESE database", 0))
        self.assertTrue(webcache["ese"]["tables_known"] and webcache["ese"]["unwritten_pages"] > 0)
        self.assertIn("Containers", [table["name"] for table in webcache["ese"]["tables"] if table["rows"] > 0])
        self.assertEqual(looked_at[self.source + HIVE]["kind"], "registry hive")
        self.assertGreater(looked_at[self.source + HIVE]["hive"]["bins_size"], 0)

    def test_fields_of_a_confined_run_with_findings(self):
        change_byte(self.source + HIVE, 100)
        os.unlink(self.source + WEBCACHE)
        os.symlink("/", self.source + WEBCACHE)
        self.run_host("extract {S} {R}", 3)
        record = self.record()
        self.assertEqual((record["sandbox"]["asked"], record["exit_code"], record["could_not_read"]), (True, 3, 2))
        self.assertEqual({each["path"] for each in record["problems"]}, {self.source + HIVE, self.source + WEBCACHE})
        hive, = [each for each in record["evidence"] if each["path"] == self.source + HIVE]
        self.assertIn("damaged", hive["problem"] or hive["problems"][0])

    def test_earlier_records_are_kept(self):
        texts = []
        for tables in ("cookies", "searches", "domstore"):
            self.run_host("extract --tables " + tables + " {S} {R}")
            self.assertEqual(self.record()["tables"], [tables])
            with open(self.own_folder + "/run.json", "rb") as opened:
                texts.append(opened.read())
            os.utime(self.own_folder + "/run.json", (1000000000, 1000000000))  # all of the same moment
        kept = [self.own_folder + "/run-20010909T014640000Z" + number + ".json" for number in ("", "-2")]
        self.assertEqual(sorted(glob.glob(self.own_folder + "/run-*")), sorted(kept))
        for path, text in zip(kept, texts):
            with open(path, "rb") as opened:
                self.assertEqual(opened.read(), text)


class test_check(run_case):
    def check(self, options, code=0):
        document = json.loads(self.run_host("check --json " + options + " {S}", code).stdout)
        for each in document["evidence"]:
            jsonschema.Draft7Validator({**SCHEMA["definitions"]["evidence"], "definitions": SCHEMA["definitions"]}
                                       ).validate(each)
        self.assertEqual(document["exit_code"], code)
        return document

    def test_only_what_the_tables_come_from(self):
        for table, names in PLACES.items():
            found = self.check("--user anna --tables " + table)
            self.assertEqual({os.path.basename(each["path"]) for each in found["evidence"]}, names)
            self.assertEqual((found["tables"], found["profiles"]), ([table], ["anna"]))
        change_byte(self.source + HIVE, 100)
        self.check("--tables cookies")
        self.assertEqual(self.check("--tables searches", 3)["problems"][0]["path"], self.source + HIVE)
        self.assertFalse(os.path.exists(self.base + "/result"))

    def test_text(self):
        change_byte(self.source + HIVE, 100)
        answer = self.run_host("check --tables searches {S}", 3)
        self.assertIn(b"the header of the registry hive is damaged\n", answer.stdout)
        self.assertIn(digest(self.source + HIVE).encode(), answer.stdout)
        self.assertIn(b"  sound\n2 files\n", answer.stdout)
        self.assertEqual(self.run_host("check --quiet --tables cookies {S}").stdout, b"")

    def test_nothing_there(self):
        shutil.rmtree(self.source + "/Users/bernd")
        for path in glob.glob(self.source + "/Users/anna/*"):
            shutil.rmtree(path) if os.path.isdir(path) else os.unlink(path)
        self.assertEqual(self.check("", 4)["evidence"], [])
        shutil.rmtree(self.source + "/Users")
        self.run_host("check {S}", 4)


class test_verify(run_case):
    def setUp(self):
        super().setUp()
        self.run_host("extract {S} {R}")
        self.database = self.own_folder + "/Cortana.sqlite"

    def differences(self, words, code):
        found = json.loads(self.run_host("verify --json " + words, code).stdout)
        different = {each["path"]: each["difference"] for each in found["files"] if each["difference"]}
        self.assertEqual(found["differences"], len(different))
        return len(found["files"]), different

    def test_as_recorded(self):
        evidence = len(self.record()["evidence"])
        self.assertEqual(self.differences("{R}", 0), (3, {}))
        self.assertEqual(self.differences("{R} {S}", 0), (3 + evidence, {}))
        shutil.copytree(self.base + "/result", self.base + "/moved")
        os.rename(self.source, self.base + "/elsewhere")
        change_byte(self.database, 5000)  # what lies at the old place now is not what is asked about
        moved = self.base + "/moved/Artifacts_Result/Cortana"
        self.assertEqual(self.differences(moved + "/run.json " + self.base + "/elsewhere", 0), (3 + evidence, {}))
        os.unlink(moved + "/Cortana.sqlite")
        self.assertEqual(set(self.differences(self.base + "/moved", 3)[1]), {self.database})

    def test_what_differs(self):
        change_byte(self.database, 5000)
        change_byte(self.source + WEBCACHE, 50000)
        os.unlink(self.source + HIVE)
        _, different = self.differences("{R} {S}", 3)
        self.assertEqual(set(different), {self.database, self.source + WEBCACHE, self.source + HIVE})
        self.assertIn("it differs: SHA-256 " + digest(self.database), different[self.database])
        self.assertEqual(different[self.source + HIVE], "it cannot be read: No such file or directory")
        answer = self.run_host("verify {R}", 3)
        self.assertTrue(answer.stdout.startswith(self.database.encode() + b": it differs"), answer.stdout)
        self.assertTrue(answer.stdout.endswith(b"\n2 of 3 files as recorded\n"), answer.stdout)

    def test_without_a_digest(self):
        record = self.record()
        record["written"][0]["sha256"] = None
        with open(self.own_folder + "/run.json", "w", encoding="utf-8") as opened:
            json.dump(record, opened)
        self.assertEqual(self.differences("{R}", 3)[1], {self.database: "its digest was not recorded"})

    def test_damaged_record(self):
        file = self.own_folder + "/run.json"
        with open(file, "r+b") as opened:
            text = opened.read()
            for damaged in (b"", text[:-3], text.replace(b'"format": 1', b'"format": 2'), b"[]"):
                opened.seek(0)
                opened.truncate()
                opened.write(damaged)
                opened.flush()
                self.assertIn(b"no run record of a known format", self.run_host("verify {R}", 5).stderr)
        os.unlink(file)
        self.assertIn(b"cannot read the run record " + file.encode(), self.run_host("verify {R}", 5).stderr)


class test_options(run_case):
    def test_progress_lines(self):
        answer = self.run_host("extract --progress json --jobs 1 --tables cookies,\tsearches {S} {R}")
        lines = [json.loads(line) for line in answer.stderr.splitlines()]
        self.assertEqual(set(lines[0]), {"event", "profile", "table", "running", "rows", "all_rows", "rows_per_second",
                                         "profiles_done", "profiles", "seconds"})
        seen = [(line["profile"], line["table"], line["running"]) for line in lines]
        steps = [(user, table, running) for user in ("anna", "bernd")
                 for table, running in (("", True), ("cookies", True), ("searches", True), ("", True), ("", False))]
        self.assertEqual([each for i, each in enumerate(seen) if i == 0 or seen[i - 1] != each], steps)
        self.assertEqual((lines[-1]["profiles_done"], lines[-1]["profiles"]), (2, 2))
        self.assertEqual(lines[-1]["all_rows"], self.record()["rows_added"])
        for form, words in (("none", b""), ("line", b"")):  # no terminal
            answer = self.run_host("extract --progress " + form + " --tables cookies {S} {R}")
            self.assertEqual(answer.stderr, words)

    def test_a_profile_named_twice_is_examined_once(self):
        answer = self.run_host("extract --json --tables cookies --user anna --user anna=C\\a --user anna=x {S} {R}")
        self.assertEqual(json.loads(answer.stdout)["profiles"], ["anna"])
        once = self.record()["rows_added"]
        with contextlib.closing(sqlite3.connect(self.own_folder + "/Cortana.sqlite")) as database:
            self.assertEqual(database.execute("select distinct domain_user,os_scheme_display from cookies").fetchall(),
                             [("C\\a", "Windows")])
        self.run_host("extract --tables cookies --user anna {S} {R}")
        self.assertEqual((self.record()["rows_added"], once > 0), (once, True))


if __name__ == "__main__":
    unittest.main()
