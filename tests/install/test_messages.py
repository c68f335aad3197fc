# SPDX-License-Identifier: MIT
"""docs/troubleshooting.md holds the messages of the sources: none that is not said, and all that evidence or a worker causes."""
import glob
import os
import re
import unittest

TOP = os.environ["TOP"]
LITERAL = re.compile(r'(?:QStringLiteral|QLatin1String)\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\)')
# Texts that are no messages: statements, summaries, the words of --help.
OTHERS = re.compile(r"^(select|insert|update|create|delete|attach|detach|pragma|title,)|\n|\\n| {2}|^(and|or) ")
SUMMARY = ["finished with failures", "all profiles at once", "one for each profile", "output cannot be written",
           "one run for each profile", "no folder Users", "holds a folder Users", "it could not be read to its end",
           "the ids of the evidence were not read", "no trigger row has these values",
           "several trigger rows have these values"]


def texts_in(pattern):
    found = set()
    for name in glob.glob(TOP + "/" + pattern):
        with open(name, encoding="utf-8") as file:
            for match in LITERAL.finditer(file.read()):
                found.add("".join(re.findall(r'"((?:[^"\\]|\\.)*)"', match.group(1))))
    return found


def shape(text):
    return re.sub(r"(%\d+|\.\.\.)+", "...", text).strip(" .:")


def is_message(text):
    return len(text.split()) >= 4 and text[0].islower() and not OTHERS.search(text) and text not in SUMMARY


class Messages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with open(TOP + "/docs/troubleshooting.md", encoding="utf-8") as file:
            cls.told = [shape(entry) for entry in re.findall(r"^\| `(.*?)` \|", file.read(), re.M)]

    def test_each_is_said(self):
        said = {shape(text) for text in texts_in("host/**/*.cpp") | texts_in("host/*.cpp")}
        self.assertGreater(len(self.told), 50)
        self.assertEqual(len(self.told), len(set(self.told)))
        self.assertEqual([text for text in self.told if text not in said], [])

    def test_none_is_missing(self):
        said = set().union(*(texts_in(part) for part in ("host/health/*.cpp", "host/run/*.cpp")))
        self.assertEqual(sorted(text for text in said if is_message(text) and shape(text) not in self.told), [])


unittest.main()
