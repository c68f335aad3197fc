# SPDX-License-Identifier: MIT
"""One source of a batch: done once, whole or not at all, and what the next run makes of what is there."""
import contextlib
import fcntl
import json
import os
import struct
import tempfile
import unittest

from batch_case import batch_case


class test_one_source(batch_case):
    def setUp(self):
        super().setUp()
        self.source = self.make_source("pc1")
        self.write_manifest([self.source, {"path": self.base + "/gone"}, {"path": self.make_empty("bare")},
                             {"path": self.make_source("pc4"), "type": "archive"}, {"path": self.base + "/ev/odd"}])
        os.mkdir(self.base + "/ev/odd")
        with open(self.base + "/ev/odd/Users", "w", encoding="utf-8"):
            pass

    def make_empty(self, name):
        os.makedirs(self.base + "/ev/" + name + "/Users")
        return self.base + "/ev/" + name

    def record(self, source="s1"):
        with open(self.out + "/" + source + "/batch.json", encoding="utf-8") as file:
            return json.load(file)

    def test_the_result_is_that_of_extract(self):
        self.host("extract", "--quiet", "--tables", "time_reminders,place_reminders,latest_audio_search,searches",
                  self.source, self.base + "/plain")
        elsewhere = tempfile.TemporaryDirectory(dir="/var/tmp")  # where it is another file system, the result is copied
        self.addCleanup(elsewhere.cleanup)
        for limit, temporary in (("1G", elsewhere.name), ("2G", self.temporary)):
            self.run_one("s1", "--force", "--memory-limit", limit, env={**self.environment, "TMPDIR": temporary})
            self.assertEqual(self.content(self.out + "/s1"), self.content(self.base + "/plain"))
            names = [name for _, folders, files in os.walk(self.out + "/s1") for name in folders + files]
            self.assertEqual([name for name in names if name.startswith(".")], [])
        self.assertIn("of 3 files as recorded", self.host("verify", self.out + "/s1").stdout)
        with open(self.out + "/s1/Artifacts_Result/Cortana/run.json", encoding="utf-8") as file:
            run = json.load(file)
        paths = [run["database"], run["debug_log"]] + [written["path"] for written in run["written"]]
        self.assertTrue(all(path.startswith(self.out + "/s1/") and os.path.exists(path) for path in paths), paths)
        self.assertEqual(self.record()["rows"], run["rows_added"])
        self.assertEqual((sorted(os.listdir(self.out)), os.listdir(self.temporary)), ([".manifest.jsonl", "s1"], []))

    def test_done_already(self):
        self.run_one("s1")
        first = self.record()
        with open(self.out + "/.s1.partial.lock", "w", encoding="utf-8"):
            pass  # of a run that died just before its end
        self.assertIn("done already", self.run_one("s1").stdout)
        self.assertEqual(sorted(os.listdir(self.out)), [".manifest.jsonl", "s1"])
        slurm = {**self.environment, "SLURM_ARRAY_TASK_ID": "1"}
        self.host("batch", "run", "--manifest", self.manifest, "--out", self.out, env=slurm)
        self.assertEqual(self.record(), first)
        os.utime(self.source + "/Users", (1, 2**31))
        for words, told in [([], "other the evidence"), (["--memory-limit", "1G"], "other the evidence, memory_limit")]:
            self.assertIn(told + ";", self.run_one("s1", *words, code=2).stderr)
        self.assertEqual(self.record(), first)
        self.run_one("s1", "--memory-limit", "1G", "--force")
        self.assertNotEqual(self.record()["evidence"], first["evidence"])
        self.assertEqual(sorted(os.listdir(self.out)), [".manifest.jsonl", "s1"])

    def test_a_digest_stands_for_the_evidence(self):
        moved = self.base + "/ev/moved"
        for path, digest, code in [(self.source, "a", 0), (moved, "a", 0), (moved, "b", 2)]:
            if not os.path.exists(path):
                os.rename(self.source, path)
            with contextlib.suppress(FileNotFoundError):
                os.unlink(self.out + "/.manifest.jsonl")
            self.write_manifest([{"path": path, "sha256": digest * 64}])
            self.run_one("s1", code=code)

    def test_what_gives_no_result(self):
        missing = self.run_one("s2", code=3)  # no folder of results is made for it
        self.assertIn("could not read: " + self.base + "/gone", missing.stderr)
        self.assertFalse(os.path.exists(self.out))
        self.run_one("s3", code=4)
        self.run_one("s2", code=3)
        self.run_one("s4", code=2)
        self.run_one("s5", code=3)
        self.run_one("s1", "--library", "/dev/null", code=1)
        status = self.status(3)
        self.assertEqual([status[name] for name in ("sources", "done", "failed", "running", "waiting")], [5, 1, 4, 0, 0])
        self.assertEqual({each["id"]: (each["exit_code"], each["retryable"]) for each in status["failing"]},
                         {"s2": (3, False), "s4": (2, False), "s5": (3, False), "s1": (1, True)})
        self.run_one("s1")
        self.assertFalse(os.path.exists(self.out + "/.s1.failed.json"))
        self.assertEqual((self.status(3)["done"], self.record("s3")["exit_code"]), (2, 4))
        self.assertEqual(os.listdir(self.temporary), [])

    def test_refusals(self):
        inside = self.source + "/out"
        for words, code, told in [
                (["--id", "s9", "--out", self.out], 2, "it has no source s9"), (["--out", self.out], 2, "is not clear"),
                (["--index", "6", "--out", self.out], 2, "it has no line 6"),
                (["--id", "s1", "--index", "1", "--out", self.out], 2, "one of them is enough"),
                (["--id", "s1", "--out", inside], 2, "it lies inside the source"),
                (["--id", "s1", "--out", self.manifest + "/x"], 5, "cannot be used")]:
            with self.subTest(told):
                self.assertIn(told, self.host("batch", "run", "--manifest", self.manifest, *words, code=code).stderr)
        self.assertIn("lies inside the source", self.run_one(
            "s1", code=5, env={**self.environment, "TMPDIR": self.source}).stderr)
        self.assertEqual(os.listdir(self.source), ["Users"])
        os.makedirs(self.out + "/s1/precious")
        self.assertIn("is no result of a batch", self.run_one("s1", "--force", code=2).stderr)
        self.assertTrue(os.path.isdir(self.out + "/s1/precious"))

    def test_another_manifest(self):
        self.write_manifest([self.source])
        self.run_one("s1")
        self.write_manifest([self.source, self.source])  # it may grow
        self.run_one("s2")
        self.write_manifest([self.base + "/ev", self.source, self.source])
        self.assertIn("of another manifest: it has the source s1 otherwise", self.run_one("s3", code=2).stderr)
        self.assertEqual(self.status()["sources"], 2)

    def test_a_run_on_another_machine(self):
        os.mkdir(self.out)
        with open(self.out + "/.s1.partial.lock", "w", encoding="utf-8") as lock:
            lock.write("host other, process 1\nand what is left of an older one\n")
            lock.flush()
            fcntl.fcntl(lock, fcntl.F_OFD_SETLK, struct.pack("hhqqi4x", fcntl.F_WRLCK, 0, 0, 0, 0))
            self.assertIn("another run works on it: host other, process 1", self.run_one("s1", code=5).stderr)
            self.assertEqual(self.status()["running_now"], [{"id": "s1", "holder": "host other, process 1"}])
        status = self.status(3)  # the machine is gone
        self.assertEqual([(each["id"], each["retryable"]) for each in status["failing"]], [("s1", True)])
        os.makedirs(self.out + "/.s1.partial/half")
        self.run_one("s1")
        self.assertEqual(sorted(os.listdir(self.out)), [".manifest.jsonl", "s1"])

    def test_a_run_that_died_between_two_names(self):
        self.run_one("s1")
        first = self.record()
        os.rename(self.out + "/s1", self.out + "/.s1.old")
        os.mkdir(self.out + "/.s1.partial")
        self.run_one("s1")
        self.assertEqual(self.record(), first)
        os.rename(self.out + "/s1", self.out + "/s2")
        failing, = self.status(3)["failing"]
        self.assertIn("s2 is no result of a batch", failing["reason"])


if __name__ == "__main__":
    unittest.main()
