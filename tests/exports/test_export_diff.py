# SPDX-License-Identifier: MIT
"""What differs between two runs, whatever the keys and the order of their rows."""
import json
import os
import shutil
import subprocess
import unittest

from export_case import HOST, export_case

FIRST = [{"system_user": "anna", "url": "a", "windows_path": "C:/1", "access_count": 1},
         {"system_user": "anna", "url": "a", "windows_path": "C:/1", "access_count": 1},
         {"system_user": "anna", "url": "b", "windows_path": None, "access_count": 2},
         {"system_user": "bernd", "url": b"\xff", "windows_path": "", "access_count": 3}]


def other(row, **values):
    return {**FIRST[row], **values}


# name: (rows of the second run, removed, added, changed)
SECOND = {
    "same": (FIRST, 0, 0, 0),
    "another order": (FIRST[::-1], 0, 0, 0),
    "other keys": ([{**row, "INT": key} for key, row in enumerate(FIRST, 100)], 0, 0, 0),
    "one copy less": (FIRST[1:], 1, 0, 0),
    "one copy more": (FIRST + FIRST[:1], 0, 1, 0),
    "all gone": ([], 4, 0, 0),
    "a count changed": (FIRST[:2] + [other(2, access_count=9)] + FIRST[3:], 0, 0, 1),
    "changed and one more": (FIRST[:2] + [other(2, access_count=9), other(2, access_count=8)] + FIRST[3:], 0, 1, 1),
    "another user's": (FIRST[:3] + [other(3, system_user="anna")], 1, 1, 0),
    "NULL became empty": (FIRST[:2] + [other(2, windows_path="")] + FIRST[3:], 1, 1, 0),
    "text for bytes": (FIRST[:3] + [other(3, url=("text", b"\xff"))], 1, 1, 0),
    "a host's note": (FIRST[:3] + [other(3, notes="seen")], 0, 0, 1),
}


class differences(export_case):
    def diff(self, *options):
        words = [HOST, "diff", *options, self.result, self.base + "/second.sqlite"]
        return subprocess.run(words, capture_output=True, text=True)

    def test_rows(self):
        shutil.copy(self.own_folder + "/Cortana.sqlite", self.base + "/empty.sqlite")
        self.insert("cookies", FIRST)
        file = self.own_folder + "/Cortana.sqlite"
        first = self.base + "/first.sqlite"
        shutil.copy(file, first)
        for name, (rows, *wanted) in SECOND.items():
            with self.subTest(name):
                self.database.execute("delete from cookies")
                self.insert("cookies", rows)
                shutil.copy(file, self.base + "/second.sqlite")
                words = [HOST, "diff", "--json", first, self.base + "/second.sqlite"]
                answer = subprocess.run(words, capture_output=True)
                told = json.loads(answer.stdout)
                self.assertEqual((answer.returncode, told["equal"]), (3 * any(wanted), not any(wanted)))
                found = {table.pop("table"): list(table.values()) for table in told["tables"]}
                self.assertEqual(found.pop("cookies"), [wanted[1], wanted[2], wanted[0]])  # added, changed, removed
                self.assertEqual(set(map(tuple, found.values())), {(0, 0, 0)})

    def test_words_and_texts(self):
        file = self.own_folder + "/Cortana.sqlite"
        shutil.copy(file, self.base + "/second.sqlite")
        before = os.stat(file).st_mtime_ns
        self.assertEqual((self.diff().returncode, self.diff().stdout), (0, "the same rows\n"))
        self.insert("searches", [{"search_keyword": "x"}])
        self.assertEqual(self.diff().stdout, "searches              removed 1, added 0, changed 0\n")
        self.assertEqual(self.diff("--tables", "cookies").returncode, 0)
        self.assertEqual(subprocess.run([HOST, "diff", self.result], capture_output=True).returncode, 2)
        self.assertGreaterEqual(os.stat(file).st_mtime_ns, before)
        with open(self.base + "/second.sqlite", "wb") as second:
            second.write(b"SQLite format 3\0" + bytes(2000))
        self.assertEqual((self.diff().returncode, self.diff().stdout), (5, ""))
        os.remove(self.base + "/second.sqlite")
        self.assertEqual(self.diff().returncode, 5)
        self.assertFalse(os.path.exists(self.base + "/second.sqlite"))


unittest.main()
