# SPDX-License-Identifier: MIT
"""Every format shows the same instants, wherever the examiner's machine stands; what is no time never shows."""
import json
import os
import re
import subprocess
import unittest
from datetime import datetime, timezone

import openpyxl

from export_case import export_case

# name: (stored value, is it a time)
STORED = {
    "usual": (1556712000, True),
    "summer in New York": (1562932800, True),
    "first of 2038": (2147483648, True),
    "last of all": (253402300799, True),
    "before 1970": (-86400, True),
    "1601": (-11644473599, True),
    "first of all": (-62135596800, True),
    "none": (0, False),
    "empty": ("", False),
    "NULL": (None, False),
    "words": ("soon", False),
    "fraction": (1556712000.5, False),
    "blob": (b"1556712000", False),
    "year 10000": (253402300800, False),
    "never": (910692730085, False),
    "largest": (2**63 - 1, False),
    "smallest": (-2**63, False),
    "text not read, Kolkata": (-19800, False),
    "text not read, New York": (18000, False),
}
SECONDS = {key: value for key, (value, is_time) in enumerate(STORED.values(), 1) if is_time}
TEXT_FILES = ["searches.csv", "searches.jsonl", "place_reminders.csv", "timesketch.jsonl", "bodyfile.txt", "l2tcsv.csv",
              "places.kml", "places.geojson"]


def seconds(text):
    shown = datetime.fromisoformat(text)
    return int((shown - datetime(1970, 1, 1, tzinfo=timezone.utc)).total_seconds())


class times(export_case):
    def setUp(self):
        super().setUp()
        self.insert("searches", [{"search_timestamp": value} for value, _ in STORED.values()])
        self.insert("place_reminders", [{"start_date_time": value, "latitude": "1", "longitude": "2", "title": "t"}
                                        for value, _ in STORED.values()])

    def shown(self, rows, key, column, read=seconds):
        return {int(row[key]): read(row[column]) for row in rows if row.get(column)}

    def all_shown(self, suffix):
        """format -> {row key -> Unix seconds} as each format's reader understands it."""
        found = {}
        name = "search_timestamp" + suffix
        found["csv"] = self.shown(self.csv_rows("searches.csv"), "INT", name)
        found["jsonl"] = self.shown(self.json_lines("searches.jsonl"), "INT", name)
        sheet = list(openpyxl.load_workbook(self.path("cortana.xlsx"))["searches"].iter_rows(values_only=True))
        found["xlsx"] = self.shown([dict(zip(sheet[0], row)) for row in sheet[1:]], "INT", name)
        places = [feature["properties"] for feature in json.loads(self.content("places.geojson"))["features"]]
        found["geojson"] = self.shown(places, "INT", "start_date_time" + suffix)
        marks = re.findall(r"<Placemark>.*?</Placemark>", self.content("places.kml").decode(), re.S)
        found["kml"] = {}
        for mark in marks:
            data = dict(re.findall(r'<Data name="(\w+)"><value>(.*?)</value>', mark))
            if "start_date_time" + suffix in data:
                found["kml"][int(data["INT"])] = seconds(data["start_date_time" + suffix])
        return found

    def timelines_shown(self):
        found = {}
        lines = [line for line in self.json_lines("timesketch.jsonl") if line["data_type"].endswith("searches")]
        self.assertEqual([seconds(line["datetime"]) * 1000000 for line in lines], [line["timestamp"] for line in lines])
        found["timesketch"] = self.shown(lines, "INT", "datetime")
        rows = [row for row in self.csv_rows("l2tcsv.csv") if "searches" in row["sourcetype"]]
        self.assertEqual({row["timezone"] for row in rows}, {"UTC"})
        for row in rows:
            month, day, year = row["date"].split("/")
            row["iso"] = f"{year}-{month}-{day}T{row['time']}+00:00"
        found["l2tcsv"] = self.shown(rows, "inode", "iso")
        return found

    def test_same_instants_everywhere(self):
        kept = {}
        for zone in ("UTC", "Asia/Kolkata", "America/New_York"):
            environment = {**os.environ, "TZ": zone}
            self.export("csv,jsonl,xlsx,timesketch,bodyfile,l2tcsv,kml,geojson", "--time-zone", "Asia/Kolkata",
                        env=environment)
            shown = {**self.all_shown("_utc"), **self.timelines_shown()}
            shown.update({name + ", zone": found for name, found in self.all_shown("_local").items()})
            for name, found in shown.items():
                with self.subTest(zone=zone, format=name):
                    self.assertEqual(found, SECONDS)
            for name in TEXT_FILES:
                with self.subTest(zone=zone, file=name):
                    self.assertEqual(kept.setdefault(name, self.content(name)), self.content(name))
        self.assertNotIn(b"1970-01-01", b"".join(kept.values()))

    def test_offset_of_the_zone(self):
        wanted = {"Asia/Kolkata": ("2019-05-01T17:30:00+05:30", "2019-07-12T17:30:00+05:30"),
                  "America/New_York": ("2019-05-01T08:00:00-04:00", "2019-07-12T08:00:00-04:00"),
                  "Europe/London": ("2019-05-01T13:00:00+01:00", "2019-07-12T13:00:00+01:00")}
        for zone, texts in wanted.items():
            with self.subTest(zone):
                self.export("csv", "--time-zone", zone)
                rows = self.csv_rows("searches.csv")
                self.assertEqual((rows[0]["search_timestamp_local"], rows[1]["search_timestamp_local"]), texts)
                self.assertEqual(rows[0]["search_timestamp_utc"], "2019-05-01T12:00:00+00:00")

    def test_mactime_reads_the_body(self):
        self.insert("cookies", [{"url": "a|b%7C\n2", "file_size": 7, "creation_timestamp": 1556712000,
                                 "modification_timestamp": 1556712001, "last_accessed_timestamp": 1556712002,
                                 "sync_timestamp": 1556712003, "expiration_timestamp": 253402300800}])
        account = [a for a in self.export("bodyfile")["tables"] if a["table"] == "searches"][0]
        self.assertEqual(account["notes"]["events that the format cannot hold"], sum(s < 0 for s in SECONDS.values()))
        words = ["mactime", "-b", self.path("bodyfile.txt"), "-d", "-y", "-z", "UTC", "1970-01-02"]
        listing = subprocess.run(words, capture_output=True, text=True, check=True)
        # Perl 5.40 says of mactime itself that it is written in an old way.
        self.assertEqual([line for line in listing.stderr.splitlines() if "deprecated" not in line], [])
        lines = [line.split(",", 7) for line in listing.stdout.splitlines()[1:]]
        cookies = [(line[0], line[1], line[2], line[6], line[7]) for line in lines if "cookies" in line[7]]
        name = '"[{}] cookies: a|b%7C\\n2 (row 1)"'
        self.assertEqual(cookies, [
            ("2019-05-01T12:00:00Z", "7", "...b", "1", name.format("Creation Time")),
            ("2019-05-01T12:00:01Z", "7", "m...", "1", name.format("Content Modification Time")),
            ("2019-05-01T12:00:02Z", "7", ".a..", "1", name.format("Last Access Time")),
            ("2019-05-01T12:00:03Z", "7", "..c.", "1", name.format("Synchronization Time"))])
        found = {int(line[6]): seconds(line[0]) for line in lines if "searches" in line[7]}
        self.assertEqual(found, {key: value for key, value in SECONDS.items() if value > 0})


unittest.main()
