#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Says as Markdown what a run of the tests held: cases by folder, and each case that failed or was left out, with the reason.

validation_tests.py JUNIT_FILE CTEST_JSON_FILE
"""
import json
import re
import sys
import xml.etree.ElementTree

QT_TOTALS = re.compile(r"^Totals: (\d+) passed, (\d+) failed, (\d+) skipped", re.M)
QT_LEFT_OUT = re.compile(r"^SKIP *: (\S.*?)\)? (.*)$", re.M)
PYTHON_RAN = re.compile(r"^Ran (\d+) tests? in ", re.M)


def folders(listing):
    """The folder of each test by its name."""
    found = {}
    for test in listing["tests"]:
        properties = {p["name"]: p["value"] for p in test["properties"]}
        found[test["name"]] = properties["WORKING_DIRECTORY"].rsplit("/", 1)[1]
    return found


def cases(output):
    """(run, left out) of a program's output; a program that does not count them is one case."""
    totals = QT_TOTALS.findall(output)
    if totals:
        return sum(int(t[0]) + int(t[1]) for t in totals), sum(int(t[2]) for t in totals)
    ran = PYTHON_RAN.findall(output)
    return (sum(int(r) for r in ran), 0) if ran else (1, 0)


def main(junit, listing):
    folder_of = folders(listing)
    rows, remarks = {}, []
    for test in junit.iter("testcase"):
        name, output = test.get("name"), test.findtext("system-out") or ""
        row = rows.setdefault(folder_of[name], [0, 0, 0, 0])
        run, left_out = cases(output)
        failed = test.get("status") != "run"
        for i, count in enumerate((1, run, left_out, failed)):
            row[i] += count
        if failed:
            remarks.append(f"**{name} failed**")
        remarks += [f"left out: {case}: {why}" for case, why in QT_LEFT_OUT.findall(output)]
    print("| folder of tests/ | programs | cases run | cases left out | programs failed |\n|---|---|---|---|---|")
    for folder in sorted(rows):
        print(f"| {folder} |", " | ".join(str(count) for count in rows[folder]), "|")
    print("| together |", " | ".join(str(sum(column)) for column in zip(*rows.values())), "|")
    if remarks:
        print()
    for remark in remarks:
        print(f"- {remark}")


with open(sys.argv[2], encoding="utf-8") as file:
    main(xml.etree.ElementTree.parse(sys.argv[1]).getroot(), json.load(file))
