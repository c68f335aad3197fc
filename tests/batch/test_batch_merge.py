# SPDX-License-Identifier: MIT
"""One result of many: what it holds besides the rows, and what is refused."""
import hashlib
import json
import os
import shutil
import sqlite3
import unittest

from batch_case import DATABASE, LINKS, batch_case


class test_merge(batch_case):
    def setUp(self):
        super().setUp()
        damaged = self.make_source("pc2")
        with open(damaged + "/Users/pc2/NTUSER.DAT", "r+b") as hive:
            hive.truncate(5000)
        self.write_manifest([{"path": self.make_source("pc1"), "sha256": "a" * 64, "number": 7}, damaged,
                             {"path": self.make_source("pc3", "bernd")}])
        for source, code in (("s1", 0), ("s2", 3), ("s3", 0)):
            self.run_one(source, code=code)
        self.merged = self.base + "/merged"

    def query(self, statement, file=None):
        database = sqlite3.connect(file or self.merged + DATABASE)
        try:
            return database.execute(statement).fetchall()
        finally:
            database.close()

    def change(self, source, statement):
        """As another version of the program would have left it: with a digest that fits."""
        file = self.out + "/" + source + DATABASE
        database = sqlite3.connect(file)
        database.execute(statement)
        database.commit()
        database.close()
        record = self.out + "/" + source + "/batch.json"
        with open(record, encoding="utf-8") as opened:
            fields = json.load(opened)
        with open(file, "rb") as opened:
            fields["database_sha256"] = hashlib.sha256(opened.read()).hexdigest()
        with open(record, "w", encoding="utf-8") as opened:
            json.dump(fields, opened)

    def test_sources_beside_the_rows(self):
        self.assertIn("done with failures: s2: could not read: ", self.merge(code=3).stderr)
        rows = self.query("select source,id,path,type,sha256,outcome,rows from sources order by number")
        ev = self.base + "/ev/"
        self.assertEqual([row[:6] for row in rows], [
            ("Source2", "s2", ev + "pc2", "folder", None, "finished with failures"),
            ("Source3", "s3", ev + "pc3", "folder", None, "complete"),
            ("Source7", "s1", ev + "pc1", "folder", "a" * 64, "complete")])
        for source, _, _, _, _, _, count in rows:
            found = sum(self.query("select count(*) from %s where source_count_name='%s'" % (table, source))[0][0]
                        for table in ("time_reminders", "place_reminders", "latest_audio_search", "searches"))
            self.assertEqual((found, count > 0), (count, True))
        self.assertEqual([name for name, in self.query("select distinct source_count_name from searches order by INT")],
                         ["Source7", "Source3"])  # the manifest's order
        self.assertEqual(self.query("select name from pragma_table_info('sources')")[0], ("source",))

    def test_what_reads_results_reads_the_merged_one(self):
        self.merge(code=3)
        listed = self.host("rows", self.merged).stdout
        confirmed = self.query("select count(*) from reminder_links where reminder_link='confirmed'", self.merged + LINKS)
        self.assertEqual((listed.count("reminder_link: confirmed"), confirmed[0][0] > 0), (confirmed[0][0], True))
        for name in ("Source2", "Source3", "Source7"):
            self.assertIn("source_count_name: " + name, listed)
        self.host("export", "--format", "csv", "--out", self.base + "/csv", self.merged)
        with open(self.base + "/csv/searches.csv", encoding="utf-8") as file:
            self.assertEqual(file.read().count("Source7"), listed.count("source_count_name: Source7") -
                             listed[:listed.index("searches\n")].count("source_count_name: Source7"))
        self.host("diff", self.merged, self.merged)

    def test_keys_of_links_follow_those_of_rows(self):
        self.merge(code=3)
        database = sqlite3.connect(self.merged + DATABASE)
        self.addCleanup(database.close)
        database.execute("attach ? as links", (self.merged + LINKS,))
        for table in ("time_reminders", "place_reminders"):
            pairs = database.execute("select r.title,l.linked_title from %s r left join links.reminder_links l on "
                                     "l.table_name='%s' and l.INT=r.INT where l.reminder_link='confirmed'" % (table, table))
            pairs = pairs.fetchall()
            self.assertTrue(pairs)
            self.assertTrue(all(shown == linked for shown, linked in pairs), pairs)
        sources = database.execute("select distinct source from links.reminders_not_shown order by 1").fetchall()
        self.assertTrue({source for source, in sources} <= {"Source2", "Source3", "Source7"})

    def change_byte(self, file):
        with open(file, "r+b") as opened:
            opened.seek(5000)
            opened.write(b"\x55")

    def forget_links(self, _):
        record = self.out + "/s3/batch.json"
        with open(record, encoding="utf-8") as opened:
            fields = json.load(opened)
        with open(record, "w", encoding="utf-8") as opened:
            json.dump({**fields, "links_sha256": None}, opened)

    def test_what_is_refused(self):
        version = "of another version than this program's"
        cases = [(self.change_byte, 3, "is not what its run wrote", "failed"),
                 (lambda file: os.truncate(file, 40960), 3, "is not what its run wrote", "failed"),
                 (lambda _: os.unlink(self.out + "/s3" + LINKS), 3, "cannot be read", "failed"),
                 (self.forget_links, 3, "is not in its record", "failed"),
                 (lambda _: shutil.rmtree(self.out + "/s3"), 3, "missing: s3", "missing"),
                 (lambda _: self.change("s3", "alter table cookies add column more text"), 5, version, None),
                 (lambda _: self.change("s3", "drop table domstore"), 5, version, None)]
        for number, (spoil, code, told, outcome) in enumerate(cases):
            with self.subTest(number):
                shutil.copytree(self.out, self.base + "/kept")
                spoil(self.out + "/s3" + DATABASE)
                self.assertIn(told, self.merge(code=code).stderr)
                self.assertFalse(os.path.exists(self.merged))
                self.merge("--allow-partial", code=code)
                if outcome:
                    self.assertEqual(self.query("select outcome,rows from sources where id='s3'"), [(outcome, 0)])
                    self.assertEqual(self.query("select distinct source_count_name from searches"), [("Source7",)])
                    shutil.rmtree(self.merged)
                shutil.rmtree(self.out)
                os.rename(self.base + "/kept", self.out)

    def test_what_is_replaced(self):
        self.merge(code=3)
        before = self.query("select count(*) from searches")
        self.merge(code=3)  # the same place
        self.assertEqual(self.query("select count(*) from searches"), before)
        os.rename(self.merged, self.base + "/.merged.old")  # as a run leaves it that dies between two names
        shutil.move(self.out + "/s3", self.base + "/s3")
        self.merge(code=3)
        self.assertEqual(self.query("select count(*) from searches"), before)
        shutil.move(self.base + "/s3", self.out + "/s3")
        precious = self.base + "/precious"
        shutil.copytree(self.out + "/s1", precious)
        for place, code, told in [(precious, 2, "is no merged result"), (self.out + "/s1", 2, "is no merged result"),
                                  (self.base + "/ev/pc1/merged", 2, "lies inside the source"),
                                  (self.base + "/gone/merged", 5, "No such file")]:
            self.assertIn(told, self.host("batch", "merge", self.out, "-o", place, code=code).stderr)
        self.assertTrue(os.path.exists(precious + "/batch.json"))
        self.assertIn("holds no batch", self.host("batch", "merge", precious, "-o", self.merged, code=5).stderr)
        self.assertEqual(os.listdir(self.temporary), [])


if __name__ == "__main__":
    unittest.main()
