# SPDX-License-Identifier: MIT
"""Files appear whole or not at all, and nowhere but in the folder; the database is not touched."""
import os
import resource
import sqlite3
import subprocess
import unittest
import zipfile

from export_case import FORMATS, HOST, export_case


def content_of(path):
    with open(path, "rb") as file:
        return file.read()


class folders(export_case):
    def setUp(self):
        super().setUp()
        self.insert("searches", [{"search_keyword": "word", "search_timestamp": 1556712000}])

    def listing(self):
        return sorted(os.listdir(self.exports))

    def test_database_stays_as_it_is(self):
        self.database.close()
        file = self.own_folder + "/Cortana.sqlite"
        os.chmod(file, 0o444)
        before = (os.stat(file).st_mtime_ns, content_of(file))
        self.export(",".join(FORMATS))
        self.assertEqual((os.stat(file).st_mtime_ns, content_of(file)), before)
        self.assertEqual(sorted(os.listdir(self.own_folder)), ["Cortana.sqlite", "exports"])
        self.assertEqual([name for name in self.listing() if "part" in name], [])

    def test_links_are_not_followed(self):
        outside = self.base + "/outside"
        os.makedirs(self.exports)
        with open(outside, "w", encoding="ascii") as file:
            file.write("mine")
        os.symlink(outside, self.path("searches.csv"))
        os.symlink(self.base + "/not there", self.path("cookies.csv"))
        self.export("csv")
        self.assertEqual(content_of(outside), b"mine")
        self.assertFalse(os.path.islink(self.path("searches.csv")) or os.path.exists(self.base + "/not there"))
        self.assertEqual(self.csv_rows("searches.csv")[0]["search_keyword"], "word")

    def test_folder_that_is_a_link(self):
        os.makedirs(self.base + "/elsewhere")
        os.symlink(self.base + "/elsewhere", self.exports)
        self.export("csv", code=5)
        self.assertEqual(os.listdir(self.base + "/elsewhere"), [])
        self.export("csv", "--out", self.exports)  # named by the user
        self.assertIn("searches.csv", os.listdir(self.base + "/elsewhere"))

    def test_no_space(self):
        self.export(",".join(FORMATS))
        before = {name: self.content(name) for name in self.listing()}
        word = "x" * 500
        self.insert("searches", [{"search_keyword": word, "search_timestamp": 1556712000}] * 3000)
        self.insert("place_reminders", [{"title": word, "latitude": "1", "longitude": "1"}] * 3000)

        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (500000, 500000))

        for name in FORMATS:
            with self.subTest(name):
                told = self.export(name, code=5, preexec_fn=limit)
                self.assertIn(self.exports, told["error"])
                self.assertEqual({kept: self.content(kept) for kept in self.listing()}, before)

    def test_no_space_while_sheets_are_put_together(self):
        self.insert("searches", [{"search_keyword": "x" * 100}] * 2000)
        self.export("xlsx", "--tables", "searches")
        with zipfile.ZipFile(self.path("cortana.xlsx")) as book:
            sheet = book.getinfo("xl/worksheets/sheet1.xml").file_size
        before = self.content("cortana.xlsx")

        def limit():  # the rows fit, the sheet around them does not
            resource.setrlimit(resource.RLIMIT_FSIZE, (sheet - 100, sheet - 100))

        self.assertIn("sheet 1", self.export("xlsx", "--tables", "searches", code=5, preexec_fn=limit)["error"])
        self.assertEqual((self.listing(), self.content("cortana.xlsx")), (["cortana.xlsx"], before))

    def test_a_file_that_cannot_be_replaced(self):
        os.makedirs(self.path("searches.csv"))
        self.export("csv", code=5)
        self.assertEqual([name for name in self.listing() if "part" in name], [])

    def test_databases_that_cannot_be_read(self):
        self.insert("searches", [{"search_keyword": "word" * 1000}] * 500)
        self.database.close()
        file = self.own_folder + "/Cortana.sqlite"
        whole = content_of(file)
        page = 4096
        damaged = whole[:-100 * page] + bytes(50 * page) + whole[-50 * page:]
        for name, content in {"cut off": whole[:len(whole) // 2], "damaged": damaged, "no database": b"PK" * 5000,
                              "empty": b""}.items():
            with self.subTest(name):
                with open(file, "wb") as written:
                    written.write(content)
                self.assertIn("cannot read", self.export("csv,xlsx", code=5)["error"])
                self.assertEqual(self.listing() if os.path.exists(self.exports) else [], [])
        os.remove(file)
        self.export("csv", code=5)
        self.assertEqual(self.listing(), [])

    def test_words(self):
        cases = {
            "no format": ["export", self.result],
            "unknown format": ["export", "--format", "csv,exel", self.result],
            "empty format": ["export", "--format", "", self.result],
            "unknown table": ["export", "--format", "csv", "--tables", "cookie", self.result],
            "unknown zone": ["export", "--format", "csv", "--time-zone", "Mars/Olympus", self.result],
            "empty folder": ["export", "--format", "csv", "--out", "", self.result],
            "no result": ["export", "--format", "csv"],
            "schema of something": ["schema", self.result],
        }
        for name, words in cases.items():
            with self.subTest(name):
                answer = subprocess.run([HOST, *words], capture_output=True, text=True)
                self.assertEqual((answer.returncode, answer.stdout), (2, ""))
                self.assertIn("see cortana --help", answer.stderr)
        self.assertFalse(os.path.exists(self.exports))

    def test_rows_of_one_moment(self):
        writer = sqlite3.connect(self.own_folder + "/Cortana.sqlite", isolation_level=None)
        self.addCleanup(writer.close)
        writer.execute("begin immediate")
        writer.execute("insert into searches(search_keyword) values('not committed')")
        self.export("csv", "--tables", "searches")
        writer.execute("rollback")
        self.assertEqual(len(self.csv_rows("searches.csv")), 1)


unittest.main()
