# SPDX-License-Identifier: MIT
"""Every value arrives in every cell, whatever it is, and nothing that a spreadsheet would run."""
import csv
import re
import sys
import unittest

import openpyxl

from export_case import TABLES, export_case

csv.field_size_limit(sys.maxsize)

# name: (stored value, shown in CSV, in the workbook). None: as the CSV shows it.
HOSTILE = {
    "zero byte": (("text", b"a\0b"), "a\\x00b", None),
    "not UTF-8": (("text", b"a\xff\xc3"), "a\\xff\\xc3", None),
    "surrogate in UTF-8": (("text", b"\xed\xa0\x80"), "\\xed\\xa0\\x80", None),
    "blob": (b"\x89PNG\0", "\\x89PNG\\x00", None),
    "blob that is text": (b"plain", "plain", None),
    "formula": ("=HYPERLINK(1)", "'=HYPERLINK(1)", "=HYPERLINK(1)"),
    "plus": ("+49 89 1", "'+49 89 1", "+49 89 1"),
    "minus": ("-2+3", "'-2+3", "-2+3"),
    "at": ("@SUM(1)", "'@SUM(1)", "@SUM(1)"),
    "tab": ("\t=1", "'\t=1", "\t=1"),
    "return": ("\r=1", "'\r=1", "\r=1"),
    "line break": ("\n=1", "'\n=1", "\n=1"),
    "formula behind a quote": ('"=1', '"=1', None),
    "lines, quotes, commas": ('one\r\ntwo "2", three\n', 'one\r\ntwo "2", three\n', None),
    "quote at the end": ('a"', 'a"', None),
    "control characters": ("\x01\x1b[31m\x7f", "\x01\x1b[31m\x7f", "\\x01\\x1b[31m\x7f"),
    "right to left": ("\u202egpj.exe\u2069", "\u202egpj.exe\u2069", None),
    "byte order mark": ("\ufeffx", "\ufeffx", None),
    "no XML characters": ("\ufffe\uffff", "\ufffe\uffff", "\\ufffe\\uffff"),
    "escape of Excel's": ("_x0041_x0042_", "_x0041_x0042_", None),
    "beyond the BMP": ("😀\u0301é", "😀\u0301é", None),
    "blanks": ("  ", "  ", None),
    "long": ("x" * 32767, "x" * 32767, None),
    "too long": ("y" * 32768, "y" * 32768, "y" * 32761 + " [cut]"),
    "too long in pairs": ("😀" * 20000, "😀" * 20000, "😀" * 16380 + " [cut]"),
    "number": (-5, "-5", None),
    "fraction": (-0.1, "-0.1", None),
    "infinity": (9e999, "inf", None),
    "empty": ("", "", None),
    "NULL": (None, "", None),
}
LENGTHY = {"long", "too long", "too long in pairs"}


def is_for_text(column):
    return column not in ("INT", "bookmark", "file_size", "access_count") and not re.search("time", column)


def exact(value):
    """The stored value as bytes."""
    value = value[1] if isinstance(value, tuple) else value
    if isinstance(value, (int, float)):
        return str(value).encode()
    return value.encode() if isinstance(value, str) else value or b""


class values(export_case):
    def fill(self, names, tables=TABLES):
        for table in tables:
            columns = [column for column in self.columns(table) if is_for_text(column)]
            # a column with TEXT affinity would make text of a number, and does
            rows = [{column: HOSTILE[name][0] for column in columns} for name in names]
            self.insert(table, rows)

    def test_every_cell(self):
        names = [name for name in HOSTILE if name not in LENGTHY]
        self.fill(names)
        self.export("csv,jsonl,xlsx")
        book = openpyxl.load_workbook(self.path("cortana.xlsx"), read_only=True)
        self.assertEqual(book.sheetnames, TABLES)
        for table in TABLES:
            rows = self.csv_rows(table + ".csv")
            lines = self.json_lines(table + ".jsonl")
            cells = list(book[table].iter_rows(values_only=True))
            header = list(rows[0])
            self.assertEqual([column for column in header if not column.endswith("_utc")], self.columns(table))
            self.assertEqual(list(cells[0]), header)
            self.assertEqual((len(rows), len(lines), len(cells)), (len(names), len(names), len(names) + 1))
            for name, row, line, cell in zip(names, rows, lines, cells[1:]):
                self.assertEqual([key for key in line if not key.endswith("_bytes")], header)
                for column in filter(is_for_text, self.columns(table)):
                    with self.subTest(table=table, column=column, value=name):
                        self.check(name, row[column], line, column, cell[header.index(column)])

    def check(self, name, in_csv, line, column, in_book):
        stored, shown, in_sheet = HOSTILE[name]
        if isinstance(stored, (int, float)):  # as text in these columns, and a formula's start then
            shown, in_sheet = "'" * (shown[0] == "-") + shown, shown
            shown = shown.lstrip("'") if column in ("latitude", "longitude", "radius") else shown
            shown, in_sheet = (shown.replace("inf", "Inf"), in_sheet.replace("inf", "Inf"))
        self.assertEqual(in_csv, shown)
        decoded = re.sub("_x([0-9A-F]{4})_", lambda found: chr(int(found[1], 16)), in_book or "")
        self.assertEqual(decoded, in_sheet or shown)
        if column + "_bytes" in line:
            self.assertEqual(bytes.fromhex(line[column + "_bytes"]), exact(stored))
        elif stored is None:
            self.assertIsNone(line[column])
        elif not isinstance(stored, (int, float)):
            self.assertEqual(line[column].encode(), exact(stored))

    def test_lengthy(self):
        for name in LENGTHY:
            self.insert("searches", [{"search_keyword": HOSTILE[name][0]}])
        accounts = self.export("csv,jsonl,xlsx", "--tables", "searches")["tables"]
        self.assertEqual(accounts[2]["notes"], {"cells cut at 32,767 characters": 2})
        book = openpyxl.load_workbook(self.path("cortana.xlsx"))
        self.assertEqual([cell.value for cell in book["searches"]["E"]][1:],
                         [HOSTILE[name][2] or HOSTILE[name][1] for name in LENGTHY])
        for key, rows in (("csv", self.csv_rows("searches.csv")), ("jsonl", self.json_lines("searches.jsonl"))):
            with self.subTest(key):
                self.assertEqual([row["search_keyword"] for row in rows], [HOSTILE[name][1] for name in LENGTHY])

    def test_exact_bytes(self):
        names = [name for name, value in HOSTILE.items() if not isinstance(value[0], float)]
        self.fill(names, ["searches"])
        self.export("csv", "--csv-raw", "--tables", "searches")
        rows = self.csv_rows("searches.csv", encoding="latin-1")
        for name, row in zip(names, rows):
            with self.subTest(name):
                self.assertEqual(row["search_keyword"].encode("latin-1"), exact(HOSTILE[name][0]))

    def test_numbers_stay_numbers(self):
        self.insert("place_reminders", [{"latitude": "-33.9", "longitude": "-1e1", "radius": "-nan", "title": "-33.9",
                                         "creation_time": -86400}])
        self.insert("cookies", [{"file_size": -1, "access_count": "-x"}])
        self.export("csv,jsonl")
        place = self.csv_rows("place_reminders.csv")[0]
        self.assertEqual([place[name] for name in ("latitude", "longitude", "radius", "title", "creation_time")],
                         ["-33.9", "-1e1", "'-nan", "'-33.9", "-86400"])
        cookie = self.csv_rows("cookies.csv")[0]
        self.assertEqual([cookie["file_size"], cookie["access_count"]], ["-1", "'-x"])
        self.assertEqual([type(self.json_lines("cookies.jsonl")[0][name]) for name in ("file_size", "access_count")],
                         [int, str])

    def test_null_is_not_empty(self):
        self.insert("searches", [{"system_user": None, "domain_user": ""}])
        self.export("csv", "--tables", "searches")
        self.assertTrue(self.content("searches.csv").split(b"\r\n")[1].startswith(b',1,,"",'))

    def test_workbook_is_for_looking(self):
        self.insert("searches", [{"search_keyword": "a"}, {"search_keyword": 1}])
        self.export("xlsx")
        sheet = openpyxl.load_workbook(self.path("cortana.xlsx"))["searches"]
        self.assertEqual((sheet.freeze_panes, sheet.auto_filter.ref), ("A2", "A1:O3"))
        self.assertEqual({cell.data_type for row in sheet for cell in row if cell.value is not None}, {"s"})


unittest.main()
