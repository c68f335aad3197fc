# SPDX-License-Identifier: MIT
"""kill_once.py MARK PROGRAM WORDS...: runs the program, kills it with what it started as soon as the file that MARK names
is there, and dies the same way. MARK is removed, so the next attempt is left alone."""
import os
import signal
import subprocess
import sys

mark, words = sys.argv[1], sys.argv[2:]
with open(mark, encoding="utf-8") as file:
    awaited = file.read()
os.unlink(mark)
with subprocess.Popen(words) as process:
    while process.poll() is None and not os.path.exists(awaited):
        os.sched_yield()
    process.kill()
os.kill(os.getpid(), signal.SIGKILL)
