#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""clang-tidy over the program's and the plugin's files, several in one unit.

Nearly all of its time goes into the headers of Qt, again for each unit. Files of one target that declare no name twice
are read together; when a unit does not compile all the same, its files are read one by one.
Usage: .ci/tidy.py BUILD_FOLDER
"""
import concurrent.futures
import json
import os
import re
import subprocess
import sys

BUILD = os.path.abspath(sys.argv[1])
UNITS = BUILD + "/tidy"
FILES_A_UNIT = 12
# The code is formatted: what stands at the beginning of a line declares something.
DECLARED = re.compile(r"^(?![ #/}\n]|namespace|using namespace).*?([\w:~]+)(?:\(|\[| =| \{|\{|;)", re.MULTILINE)


def groups_of(paths):
    groups = []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            names = set(DECLARED.findall(file.read()))
        for group in groups:
            if len(group["paths"]) < FILES_A_UNIT and not names & group["names"]:
                break
        else:
            group = {"paths": [], "names": set()}
            groups.append(group)
        group["paths"].append(path)
        group["names"] |= names
    return [group["paths"] for group in groups]


def tidy(path):
    # To the analyzer the files of a unit are headers.
    analyze_all = ["--extra-arg=-Xclang", "--extra-arg=-analyzer-opt-analyze-headers"]
    answer = subprocess.run(["clang-tidy", "--quiet", "-p", UNITS, "--warnings-as-errors=*", *analyze_all, path],
                            capture_output=True, text=True, check=False)
    return answer.returncode, answer.stdout


def tidy_group(unit, paths):
    code, words = tidy(unit)
    if "clang-diagnostic-error" not in words:
        return code, words
    print("tidy: one by one:", *map(os.path.relpath, paths), flush=True)
    answers = [tidy(path) for path in paths]
    return max(code for code, _ in answers), "".join(words for _, words in answers)


def write_units(commands, groups):
    """The units, with how each is compiled, and settings that hold for included .cpp files, too."""
    os.makedirs(UNITS, exist_ok=True)
    units = {}
    for number, paths in enumerate(groups):
        unit = f"{UNITS}/{number}.cpp"
        with open(unit, "w", encoding="utf-8") as file:
            file.writelines(f'#include "{path}" // NOLINT(bugprone-suspicious-include)\n' for path in paths)
        like = commands[paths[0]]
        units[unit] = {**like, "file": unit, "command": like["command"].replace(paths[0], unit)}
    with open(UNITS + "/compile_commands.json", "w", encoding="utf-8") as file:
        json.dump([*units.values(), *commands.values()], file)
    with open(".clang-tidy", encoding="utf-8") as file:
        settings = file.read()
    with open(UNITS + "/.clang-tidy", "w", encoding="utf-8") as file:
        file.write(settings.replace(r"\.h$'", r"\.(h|cpp)$'"))
    return list(units)


def main():
    with open(BUILD + "/compile_commands.json", encoding="utf-8") as file:
        commands = {each["file"]: each for each in json.load(file)}
    alike = {}  # files of one folder that are compiled in one way
    for name in subprocess.check_output(["git", "ls-files", "*.cpp"], text=True).split():
        path = os.path.abspath(name)
        if name.split("/")[0] not in ("tests", "bench", "fuzz", "cmake") and path in commands:
            flags = re.sub(r" -o \S+ -c \S+$", "", commands[path]["command"])
            alike.setdefault((os.path.dirname(path), flags), []).append(path)
    groups = [group for paths in alike.values() for group in groups_of(paths)]
    units = write_units(commands, groups)
    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for code, words in pool.map(tidy_group, units, groups):
            print(words, end="")
            bad = max(bad, code)
    print(f"tidy: {sum(map(len, groups))} files in {len(groups)} units")
    return bad


sys.exit(main())
