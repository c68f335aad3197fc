# SPDX-License-Identifier: MIT
"""Rows out and rows left out make the rows of the database; the files hold what the accounts say."""
import json
import os
import re
import subprocess
import unittest
import zipfile

from export_case import FORMATS, HOST, TABLES, export_case

ROWS = 20000


class accounts(export_case):
    def fill(self):
        """Mostly searches, of which some have no time."""
        self.database.execute(
            "with recursive n(i) as (select 1 union all select i+1 from n where i<?) insert into searches"
            "(bookmark,search_keyword,search_timestamp) select 0,'word '||i,case i%4 when 0 then 0 when 1 then 'x' "
            "when 2 then -i*86400 else 1556712000+i end from n", (ROWS - 800,))
        for number, table in enumerate(TABLES[:-1]):
            places = ",latitude,longitude,radius" if table == "place_reminders" else ",latitude,longitude,phone"
            has_places = table in ("place_reminders", "graphed_cache")
            self.database.execute(
                f"with recursive n(i) as (select 1 union all select i+1 from n where i<100) insert into {table}"
                f"(bookmark,system_user{places if has_places else ''}) select 0,'anna'"
                + (",case i%4 when 0 then '' when 1 then 'x' else i%90 end,case i%4 when 0 then '' else i end,i"
                   if has_places else "") + " from n")

    def test_every_row_is_accounted_for(self):
        self.fill()
        told = self.export(",".join(FORMATS))["tables"]
        out = {}
        events = {}
        for account in told:
            with self.subTest(format=account["format"], table=account["table"]):
                rows = self.database.execute(f"select count(*) from {account['table']}").fetchone()[0]
                self.assertEqual(account["rows"], rows)
                self.assertEqual(account["rows_out"] + sum(account["left_out"].values()), rows)
            form = account["format"]
            out[form] = out.get(form, 0) + account["rows_out"]
            events[form] = events.get(form, 0) + account["notes"].get("events", 0) + account["notes"].get("circles", 0)
        self.assertEqual([out[name] for name in ("csv", "jsonl", "xlsx")], [ROWS] * 3)
        without = sum(1 for i in range(1, ROWS - 799) if i % 4 < 2)
        self.assertEqual((out["timesketch"], out["l2tcsv"]), (ROWS - 800 - without,) * 2)
        self.assertEqual(out["html"], ROWS)
        pages = re.findall(rb'<table class="rows.*?</table>', self.content("report.html"), re.S)
        self.assertEqual(sum(page.count(b"<tr>") - 1 for page in pages), ROWS)
        self.assertEqual((out["kml"], out["geojson"]), (100, 100))

        self.assertEqual(sum(self.content(t + ".csv").count(b"\r\n") - 1 for t in TABLES), ROWS)
        self.assertEqual(sum(self.content(t + ".jsonl").count(b"\n") for t in TABLES), ROWS)
        with zipfile.ZipFile(self.path("cortana.xlsx")) as book:
            sheets = [book.read(name) for name in book.namelist() if "worksheets/" in name]
        self.assertEqual(sum(sheet.count(b"<row ") for sheet in sheets), ROWS + len(TABLES))
        for name, form, heading in (("timesketch.jsonl", "timesketch", 0), ("bodyfile.txt", "bodyfile", 0),
                                    ("l2tcsv.csv", "l2tcsv", 1)):
            self.assertEqual(self.content(name).count(b"\n") - heading, events[form], name)
        features = json.loads(self.content("places.geojson"))["features"]
        self.assertEqual(len(features), out["geojson"] + events["geojson"])
        self.assertEqual(self.content("places.kml").count(b"</Placemark>"), len(features))

    def test_readable_summary(self):
        self.insert("searches", [{"search_keyword": "=1"}])
        answer = subprocess.run([HOST, "export", "--format", "csv,timesketch", self.result], capture_output=True, text=True)
        self.assertEqual((answer.returncode, answer.stderr), (0, ""))
        self.assertEqual(answer.stdout, "csv         1 of 1 rows; cells with an apostrophe in front: 1\n"
                                        "timesketch  0 of 1 rows\n            left out: 1 (no time)\n"
                                        f"written to {self.exports}\n")

    def test_timeline_fields_have_one_type(self):
        self.insert("cookies", [{"url": "a", "access_count": 3, "file_size": "", "creation_timestamp": 1556712000},
                                {"url": b"\xff", "access_count": "many", "file_size": 1, "creation_timestamp": 1556712000},
                                {"url": 5, "access_count": 1.5, "creation_timestamp": 1556712000}])
        self.export("timesketch")
        types = {}
        lines = self.json_lines("timesketch.jsonl")
        for line in lines:
            for name, value in line.items():
                types.setdefault(name, set()).add(type(value))
        self.assertEqual({name: kinds for name, kinds in types.items() if len(kinds) > 1}, {})
        self.assertEqual([line.get("access_count_as_found") for line in lines], [None, "many", "1.5"])
        self.assertEqual(lines[1]["url_bytes"], "ff")
        for line in lines:
            self.assertLessEqual({"message", "datetime", "timestamp", "timestamp_desc", "data_type"}, set(line))

    def test_descriptions_are_of_the_schema(self):
        described = json.loads(subprocess.check_output([HOST, "schema", "--json"]))["tables"]
        self.assertEqual([table["name"] for table in described], TABLES)
        for table in described:
            with self.subTest(table["name"]):
                self.assertEqual([c["name"] for c in table["columns"]], self.columns(table["name"]))
                integers = {row[1] for row in self.database.execute(f"pragma table_info({table['name']})")
                            if row[2].upper() == "INTEGER"}
                self.assertEqual({c["name"] for c in table["columns"] if c["kind"] in ("time", "key", "size", "count")}
                                 | {"bookmark"}, integers)
                self.assertTrue(all(c["meaning"] and c["origin"] for c in table["columns"]))
                self.assertEqual([c["name"] for c in table.get("export_columns", [])],
                                 ["reminder_link", "linked_title", "linked_text"] * (table["name"] in TABLES[:3]))

    def test_the_document_holds_the_schema(self):
        with open(os.environ["TOP"] + "/docs/artifacts.md", encoding="utf-8") as file:
            sections = re.split("(?m)^(?=### )", file.read())[1:]
        described = re.split("(?m)^(?=### )", subprocess.check_output([HOST, "schema"], text=True))[1:]
        self.assertEqual(len(sections), len(described))
        for section, text in zip(sections, described):
            with self.subTest(text.split("\n")[0]):
                self.assertEqual(section[:len(text.strip())], text.strip())
                for words in ("\n**Where Windows keeps it:** ", "\n**What it does not prove:** "):
                    self.assertIn(words, section)


unittest.main()
