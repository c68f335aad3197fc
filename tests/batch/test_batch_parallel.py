# SPDX-License-Identifier: MIT
"""Sources done by two workers of GNU parallel, some of them killed and done again: one result, as by one program
after the other. Sixteen of them; CORTANA_SOURCES in the environment asks for more."""
import os
import stat
import subprocess
import unittest

from batch_case import DATABASE, HOST, LINKS, TABLES, TOP, batch_case

SOURCES = int(os.environ.get("CORTANA_SOURCES", "16"))
PROGRAM = """#!/bin/sh
# cortana batch run --manifest M --index N ...
if [ -e "$MARKS/$6" ]; then exec python3 -S "$KILLER" "$MARKS/$6" "$HOST_PROGRAM" "$@"; fi
exec "$HOST_PROGRAM" "$@"
"""


class test_parallel(batch_case):
    def mark(self, numbers, awaited):
        """These are killed when the file is there; "{}" stands for the number."""
        for number in numbers:
            with open("%s/marks/%d" % (self.base, number), "w", encoding="utf-8") as file:
                file.write(awaited.replace("{}", str(number)))

    def parallel(self):
        environment = {**self.environment, "PATH": self.base + "/bin:" + os.environ["PATH"], "MARKS": self.base + "/marks",
                       "KILLER": TOP + "/tests/batch/kill_once.py", "JOBS": "2", "RETRIES": "1", "MEMORY": "512M",
                       "HOME": self.base}
        return subprocess.run([TOP + "/contrib/parallel.sh", self.manifest, self.out], env=environment, capture_output=True,
                              text=True, timeout=200)

    def serial(self, sources):
        """One extraction after the other into one result; goes on while the test does."""
        lines = ["%s extract --quiet --jobs 1 --tables %s --source-number %d %s %s || exit 1" % (
            HOST, ",".join(source["tables"]), number, source["path"], self.base + "/serial")
                 for number, source in enumerate(sources, 1)]
        return subprocess.Popen(["sh", "-c", "\n".join(lines)], env=self.environment)

    def test_killed_and_resumed(self):
        for folder in ("bin", "marks"):
            os.mkdir(self.base + "/" + folder)
        with open(self.base + "/bin/cortana", "w", encoding="utf-8") as file:
            file.write(PROGRAM)
        os.chmod(self.base + "/bin/cortana", stat.S_IRWXU)
        sources = [{"path": self.make_source("pc%d" % number, "anna" if number % 3 else "bernd"),
                    "tables": TABLES if number % 5 == 0 else ["searches"]} for number in range(SOURCES)]
        self.write_manifest(sources)
        self.mark((2, 7, 8), self.out + "/.s{}.partial.lock")
        self.mark((5, 16), self.out + "/.s{}.partial")
        with self.serial(sources) as serial:
            first = self.parallel()
            self.assertNotEqual(first.returncode, 0)
            killed = [each["id"] for each in self.status(3)["failing"] if each["retryable"]]
            self.assertGreaterEqual(len(killed), 2, first.stdout + first.stderr)
            refused = self.merge(code=3)
            self.assertIn("failed: " + killed[0], refused.stderr)
            self.assertFalse(os.path.exists(self.base + "/merged"))
            second = self.parallel()
            self.assertEqual(second.returncode, 0, second.stderr)
            self.assertLess(second.stdout.count("\n"), SOURCES // 2)  # only what was left to do
            self.assertEqual(self.status()["done"], SOURCES)
            self.merge()
            self.assertEqual(serial.wait(200), 0)
        merged = self.content(self.base + "/merged")
        self.assertEqual(merged, self.content(self.base + "/serial"))
        self.assertTrue(all(merged[name] for name in (*TABLES[:1], "searches", "links")), merged.keys())
        self.host("batch", "merge", self.out, "-o", self.base + "/again")
        for file in (DATABASE, LINKS, "/merge.json"):
            with open(self.base + "/merged" + file, "rb") as one, open(self.base + "/again" + file, "rb") as other:
                self.assertEqual(one.read(), other.read())
        self.assertEqual(sorted(os.listdir(self.out)), sorted([".manifest.jsonl"] + ["s%d" % (n + 1) for n in range(SOURCES)]))


if __name__ == "__main__":
    unittest.main()
