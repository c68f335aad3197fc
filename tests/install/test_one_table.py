# SPDX-License-Identifier: MIT
"""Help texts, manual page and the completions of three shells tell of the same commands, options and values."""
import os
import re
import subprocess
import tempfile
import unittest

HOST = os.environ["HOST_PROGRAM"]
PAGE = os.environ["MANUAL_PAGE"]
SHELLS = os.environ["COMPLETIONS"]

# Each reads command lines, the last word of each being typed, and prints "== " and the number behind the offers of each.
BASH = f"""source {SHELLS}/cortana.bash
while IFS= read -r line; do
    eval "COMP_WORDS=($line)"; [[ $line == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); _cortana
    for offer in "${{COMPREPLY[@]}}"; do eval "printf '%s\\n' $offer"; done; echo ==
done"""
ZSH = f"""_describe() {{ local name=${{@[-1]}}; print -rl -- ${{${{(@P)name}}%%:*}}; }}
_files() {{ print :file }}
while IFS= read -r line; do
    words=(${{(Q)${{(z)line}}}}); [[ $line == *' ' ]] && words+=('')
    CURRENT=$#words; source {SHELLS}/_cortana; print -- '=='
done"""
FISH = f"""source {SHELLS}/cortana.fish
while read -l line
    complete -C "$line" | string replace -r '\\t.*' ''
    echo ==
end"""


def run(*words):
    return subprocess.run([HOST, *words], capture_output=True, text=True, check=True).stdout


def commands():
    listed = re.search(r"Commands:\n(.*?)\n\n", run("--help"), re.S).group(1)
    return [re.match(r"  ([a-z]+(?: [a-z]+)?)", line).group(1) for line in listed.splitlines()]


def options_of_help(command):
    return set(re.findall(r"^  (?:-\w, )?(--[a-z0-9-]+)", run(*command.split(), "--help"), re.M))


def options_of_page():
    with open(PAGE, encoding="utf-8") as file:
        text = file.read().replace("\\-", "-")
    general = set(re.findall(r"\\fB(--[a-z0-9-]+)\\fR", re.search(r"\.SH OPTIONS\n(.*?)\.SH", text, re.S).group(1)))
    sections = re.findall(r"^\.SS cortana (.*?) \[options\](.*?)(?=^\.S)", text, re.S | re.M)
    return {name: general | set(re.findall(r"\\fB(--[a-z0-9-]+)\\fR", body)) for name, body in sections}


def offers(shell, lines):
    words = {"bash": ["bash", "--norc", "-c", BASH], "zsh": ["zsh", "-f", "-c", ZSH],
             "fish": ["fish", "--no-config", "-c", FISH]}[shell]
    environment = {**os.environ, "PATH": os.path.dirname(HOST) + ":" + os.environ["PATH"]}
    answer = subprocess.run(words, input="".join(line + "\n" for line in lines), capture_output=True, text=True,
                            env=environment, check=True)
    return [set(part.split("\n")) - {""} for part in answer.stdout.split("==\n")[:-1]]


class OneTable(unittest.TestCase):
    def test_options_of_every_command(self):
        names = commands()
        page = options_of_page()
        self.assertEqual(list(page), names)
        for shell in ("bash", "zsh", "fish"):
            offered = offers(shell, [f"cortana {name} -" for name in names])
            self.assertEqual(len(offered), len(names))
            for name, options in zip(names, offered):
                with self.subTest(shell=shell, command=name):
                    self.assertEqual(options, options_of_help(name))
                    self.assertEqual(options, page[name])

    def test_values(self):
        with tempfile.TemporaryDirectory() as source:
            for profile in ("anna", "anna maria", "it's $HOME", "two\nlines", "Public"):
                os.makedirs(f"{source}/Users/{profile}")
            profiles = {"anna", "anna maria", "it's $HOME"}
            cases = {
                "cortana ": {name.split()[0] for name in commands()} | {"--help", "--version"},
                "cortana extract --tables co": {"contact_triggers", "cookies"},
                "cortana rows --tables searches,coo": {"searches,cookies"},
                "cortana export --format cs": {"csv"},
                "cortana check --type ": {"folder", "image", "archive"},
                f"cortana extract {source} --user ": profiles,
                f"cortana check {source} --user anna --user ": profiles,
                f"cortana check {source}/missing --user ": set(),
            }
            for shell in ("bash", "zsh", "fish"):
                for (line, wanted), offered in zip(cases.items(), offers(shell, cases)):
                    with self.subTest(shell=shell, line=line):
                        self.assertEqual(offered, wanted)


unittest.main()
