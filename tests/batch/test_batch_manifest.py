# SPDX-License-Identifier: MIT
"""What a manifest may hold, and what is found in folders."""
import json
import os
import unittest

import jsonschema

from batch_case import TOP, batch_case

with open(TOP + "/docs/batch_manifest.schema.json", encoding="utf-8") as opened:
    SCHEMA = jsonschema.Draft7Validator(json.load(opened))
DIGEST = "0123456789abcdef" * 4


class test_lines(batch_case):
    def line(self, **fields):
        line = {"id": "a", "path": "/", "type": "folder", "number": 1, **fields}
        return {key: value for key, value in line.items() if value is not None}

    def test_the_program_and_the_schema_judge_alike(self):
        good = [{}, {"id": "A-1._b"}, {"id": "_" * 100}, {"number": 2147483647}, {"number": 7.0}, {"sha256": DIGEST},
                {"volume": 2, "type": "image"}, {"profiles": [], "tables": []}, {"tables": ["searches", "cookies"]},
                {"profiles": ["anna", "b=CORP\\b", "...", "x=", "a.=.b", "a=b=c"]}]
        bad = [{"id": None}, {"path": None}, {"type": None}, {"number": None}, {"id": ""}, {"id": ".a"}, {"id": "-a"},
               {"id": "a/b"}, {"id": "ä"}, {"id": "a" * 101}, {"id": 5}, {"path": "a/b"}, {"path": ""}, {"path": "/\0"},
               {"path": "/" + "a" * 4095}, {"type": "disk"}, {"type": ["folder"]}, {"number": 0}, {"number": -1},
               {"number": 1.5}, {"number": 2147483648}, {"number": "1"}, {"volume": 0}, {"profiles": "anna"},
               {"profiles": [""]}, {"profiles": [".."]}, {"profiles": ["a/b"]}, {"profiles": ["=x"]},
               {"profiles": ["a=.."]}, {"profiles": ["..=b"]}, {"profiles": ["a", "a"]}, {"profiles": [3]},
               {"tables": ["search"]}, {"tables": ["searches", "searches"]}, {"sha256": DIGEST[1:]},
               {"sha256": DIGEST.upper()}, {"profile": ["anna"]}]
        for fields, is_good in [(each, True) for each in good] + [(each, False) for each in bad]:
            with self.subTest(fields):
                line = self.line(**fields)
                self.write_lines([line])
                self.assertEqual(SCHEMA.is_valid(line), is_good)
                answer = self.host("batch", "check", self.manifest, code=0 if is_good else 2)
                self.assertEqual("line 1: " in answer.stderr, not is_good, answer.stderr)

    def test_whole_manifests(self):
        a, b = self.line(), self.line(id="b", number=2)
        cases = [([a, b], 0, ""), ([a, "", b], 2, "line 2: it is no JSON"), ([a, "[1]"], 2, "line 2: it is no JSON object"),
                 ([a, self.line(id="A", number=2)], 2, "line 2: the id 'A' is there before"),
                 ([a, self.line(id="b")], 2, "line 2: the number 1 is there before"), ([], 2, "no manifest"),
                 ([a, self.line(id="b", number=2, path=self.base + "/gone")], 3, "could not read: b: ")]
        for lines, code, words in cases:
            with self.subTest(words):
                self.write_lines(lines)
                self.assertIn(words, self.host("batch", "check", self.manifest, code=code).stderr)


class test_search(batch_case):
    def make(self, path, content=b""):
        whole = self.base + "/ev/" + path
        os.makedirs(os.path.dirname(whole), exist_ok=True)
        with open(whole, "wb") as file:
            file.write(content)

    def test_what_is_found(self):
        ewf, vmdk, archive = b"EVF\x09\x0d\x0a\xff\x00", b"KDMV" + bytes(508), b"PK\x03\x04"
        descriptor = b'# Disk DescriptorFile\nRW 8 SPARSE "disk-s001.vmdk"\n'
        for path, content in [
                ("pc1/C/users/anna/NTUSER.DAT", b""), ("pc1/C/inner.zip", archive), ("pc1/notes.docx", archive),
                ("velo/uploads/auto/C%3A/Users/b/x", b""), ("img/a.E01", ewf), ("img/a.E02", ewf), ("img/a.EAA", ewf),
                ("img/lost.E02", ewf), ("img/disk.vmdk", descriptor), ("img/disk-s001.vmdk", vmdk), ("img/raw.dd", b"x"),
                ("img/split.001", b"x"), ("img/split.002", b"x"), ("img/z.000", b"x"), ("img/z.001", b"x"),
                ("img/new.vhdx", b"vhdxfile"), ("img/empty.zip", b""), ("arc/ä b.zip", archive), ("arc/ö b.zip", archive),
                ("arc/old.tar", b"x"), ("readme.txt", b"x")]:
            self.make(path, content)
        os.symlink(self.base + "/ev/img/raw.dd", self.base + "/ev/link.dd")
        with open(self.base + "/sums", "w", encoding="utf-8") as file:
            file.write(DIGEST + " *ev/img/raw.dd\n")
        answer = self.host("batch", "create", self.manifest, self.base + "/ev", self.base + "/ev/img", "--user", "anna",
                           "--sha256sums", self.base + "/sums", "--tables", "searches,cookies")
        with open(self.manifest, encoding="utf-8") as file:
            lines = [json.loads(line) for line in file]
        for line in lines:
            SCHEMA.validate(line)
            self.assertEqual((line["profiles"], line["tables"]), (["anna"], ["cookies", "searches"]))
        self.assertEqual([(line["id"], line["path"][len(self.base) + 4:], line["type"], line["number"]) for line in lines], [
            ("arc_old.tar", "arc/old.tar", "archive", 1), ("arc_b.zip", "arc/ä b.zip", "archive", 2),
            ("arc_b.zip-2", "arc/ö b.zip", "archive", 3), ("img_a.E01", "img/a.E01", "image", 4),
            ("img_disk.vmdk", "img/disk.vmdk", "image", 5), ("img_raw.dd", "img/raw.dd", "image", 6),
            ("img_split.001", "img/split.001", "image", 7), ("img_z.000", "img/z.000", "image", 8),
            ("pc1_C", "pc1/C", "folder", 9), ("velo_uploads_auto", "velo/uploads/auto", "folder", 10)])
        self.assertEqual([line.get("sha256") for line in lines], [None] * 5 + [DIGEST] + [None] * 4)
        for left_out in ("lost.E02: left out: its first segment is missing", "new.vhdx: left out: a VHDX image",
                         "empty.zip: left out: it is empty", "link.dd: a link"):
            self.assertIn(left_out, answer.stderr)
        self.host("batch", "check", self.manifest)

    def test_refusals(self):
        self.make("pc1/Users/a/x")
        self.make("none/x")
        source = self.base + "/ev"
        for words, code, told in [
                ([source + "/m.jsonl", source], 2, "would lie inside the source"),
                ([self.manifest, source + "/gone"], 4, "could not read"),
                ([self.manifest, source + "/none"], 4, "no source was found"),
                ([self.base + "/gone/m", source], 5, "cannot be written"), ([self.manifest, source], 0, ""),
                ([self.manifest, source], 2, "is there already"), ([self.manifest, source, "--force"], 0, "")]:
            with self.subTest(told):
                self.assertIn(told, self.host("batch", "create", *words, code=code).stderr)
        self.assertEqual(sorted(os.listdir(source)), ["none", "pc1"])


if __name__ == "__main__":
    unittest.main()
