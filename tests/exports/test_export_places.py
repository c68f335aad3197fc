# SPDX-License-Identifier: MIT
"""Places stand where the rows say, or are left out; GDAL reads both files."""
import json
import math
import re
import subprocess
import unittest
from xml.etree import ElementTree

from export_case import export_case

# name: (latitude, longitude, radius, the point or why not, is a circle drawn)
PLACES = {
    "usual": ("48.137", "11.575", "250", (11.575, 48.137), True),
    "west and south": ("-33.9", "-70.6", "100.5", (-70.6, -33.9), True),
    "blanks around": (" 1.5\n", "\t2.5 ", " 10 ", (2.5, 1.5), True),
    "numbers": (48.5, 11.25, 30, (11.25, 48.5), True),
    "no radius": ("1", "2", None, (2, 1), False),
    "radius of nothing": ("1", "2", "0", (2, 1), False),
    "radius below nothing": ("1", "2", "-5", (2, 1), False),
    "radius that is no number": ("1", "2", "nan", (2, 1), False),
    "radius without end": ("1", "2", "1e999", (2, 1), False),
    "radius of half the world": ("1", "2", "5000000", (2, 1), False),
    "over the antimeridian": ("0", "179.9999", "1000", (179.9999, 0), False),
    "over the pole": ("89.9999", "0", "1000", (0, 89.9999), False),
    "corner": ("-90", "-180", "1", (-180, -90), False),
    "origin": ("0", "0", "1000", (0, 0), True),
    "beyond the pole": ("90.1", "0", "1", "invalid coordinates", False),
    "beyond the antimeridian": ("0", "-180.1", "1", "invalid coordinates", False),
    "swapped": ("139.65", "35.67", "1", "invalid coordinates", False),
    "decimal comma": ("47,6", "1", "1", "invalid coordinates", False),
    "not a number": ("nan", "nan", "1", "invalid coordinates", False),
    "hexadecimal": ("0x10", "1", "1", "invalid coordinates", False),
    "half": ("47.6", "", "1", "invalid coordinates", False),
    "empty": ("", " ", "1", "no coordinates", False),
    "NULL": (None, None, None, "no coordinates", False),
}


def reading(file):
    """{(kind, "coordinates" text)} as ogrinfo sees them, longitude first."""
    listing = subprocess.run(["ogrinfo", "-ro", "-al", file], capture_output=True, text=True, check=True)
    assert "ERROR" not in listing.stderr and "Warning" not in listing.stderr, listing.stderr
    return re.findall(r"^  (POINT|POLYGON)(?: Z)? \(+(.*?)\)+$", listing.stdout, re.M)


class places(export_case):
    def setUp(self):
        super().setUp()
        self.insert("place_reminders", [{"title": name, "latitude": latitude, "longitude": longitude, "radius": radius,
                                         "text": "<&>\x01\ufffe]]>", "creation_time": 1556712000}
                                        for name, (latitude, longitude, radius, _, _) in PLACES.items()])
        self.insert("graphed_cache", [{"search_content": "Space Needle", "latitude": "47.6", "longitude": "-122.3"}])
        self.told = self.export("kml,geojson")["tables"]

    def test_accounts(self):
        reasons = [place[3] for place in PLACES.values()]
        wanted = {reason: reasons.count(reason) for reason in ("invalid coordinates", "no coordinates")}
        for account in self.told:
            with self.subTest(format=account["format"], table=account["table"]):
                if account["table"] == "place_reminders":
                    self.assertEqual(account["left_out"], wanted)
                    self.assertEqual(account["notes"], {"circles": sum(place[4] for place in PLACES.values())})
                elif account["table"] == "graphed_cache":
                    self.assertEqual((account["rows_out"], account["left_out"]), (1, {}))

    def test_geojson(self):
        features = json.loads(self.content("places.geojson"))["features"]
        found = {}
        for feature in features:
            found.setdefault(feature["properties"].get("title"), []).append(feature["geometry"])
        self.assertEqual(found.pop(None), [{"type": "Point", "coordinates": [-122.3, 47.6]}])
        for name, (_, _, radius, point, circle) in PLACES.items():
            with self.subTest(name):
                shapes = found.get(name, [])
                if isinstance(point, str):
                    self.assertEqual(shapes, [])
                    continue
                self.assertEqual(shapes[0], {"type": "Point", "coordinates": list(point)})
                self.assertEqual(len(shapes), 1 + circle)
                for shape in shapes[1:]:
                    self.check_circle(shape["coordinates"][0], point, float(radius))

    def check_circle(self, ring, centre, radius):
        self.assertEqual(ring[0], ring[-1])
        area = sum(a[0] * b[1] - b[0] * a[1] for a, b in zip([[x - centre[0], y - centre[1]] for x, y in ring],
                                                             [[x - centre[0], y - centre[1]] for x, y in ring[1:]]))
        self.assertGreater(area, 0)  # counterclockwise
        north = max(ring, key=lambda corner: corner[1])
        east = max(ring, key=lambda corner: corner[0])
        metres = 6371008.8 * 3.141592653589793 / 180  # a degree
        cosine = math.cos(math.radians(centre[1]))
        self.assertAlmostEqual((north[1] - centre[1]) * metres, radius, delta=radius / 1000)
        self.assertAlmostEqual((east[0] - centre[0]) * metres * cosine, radius, delta=radius / 1000)

    def test_kml_is_well_formed(self):
        marks = ElementTree.parse(self.path("places.kml")).iter("{http://www.opengis.net/kml/2.2}Placemark")
        texts = [[data[0].text for data in mark[1] if data.get("name") == "text"] for mark in marks]
        self.assertEqual(texts[0], ["<&>\\x01\\ufffe]]>"])

    def test_gdal_reads_both_alike(self):
        points = [place[3] for place in PLACES.values() if not isinstance(place[3], str)]
        in_geojson = reading(self.path("places.geojson"))
        self.assertEqual(reading(self.path("places.kml")), in_geojson)
        found = [tuple(map(float, text.split()[:2])) for kind, text in in_geojson if kind == "POINT"]
        self.assertEqual(found, points + [(-122.3, 47.6)])
        self.assertEqual(sum(kind == "POLYGON" for kind, _ in in_geojson), sum(place[4] for place in PLACES.values()))


unittest.main()
