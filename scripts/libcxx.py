#!/usr/bin/env python3
"""libcxx.py BUILD [CHECKS]: reads every source that BUILD compiles once more, with clang's own C++
library (the one macOS has) in place of the system's, and shows what it complains about. Nothing is
built. With CHECKS the program's own sources are read by clang-tidy with these checks.

What only Linux compiles keeps the system's library; without CHECKS it is not read.
"""

import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

ONLY_LINUX = "/platform/linux/"
OWN = "/PellakCleaner/"
OTHER_LIBRARY = "-stdlib=libc++"


def compiled(entry):
    command = shlex.split(entry["command"])
    at = command.index("-o")
    del command[at : at + 2]
    command.remove("-c")
    return command + [OTHER_LIBRARY, "-fsyntax-only"]


def tidied(entry, build, checks):
    command = ["clang-tidy", "-quiet", "-p", build, "-checks=" + checks]
    if ONLY_LINUX not in entry["file"]:
        command.append("-extra-arg=" + OTHER_LIBRARY)
    return command + [entry["file"]]


def complaints_about(entry, command):
    done = subprocess.run(
        command, cwd=entry["directory"], capture_output=True, text=True, check=False
    )
    return done.stdout + done.stderr if done.returncode != 0 else ""


def main(build, checks=None):
    build = os.path.realpath(build)
    root = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    work = []
    for entry in entries:
        if checks is not None and entry["file"].startswith(root + OWN):
            work.append((entry, tidied(entry, build, checks)))
        elif ONLY_LINUX not in entry["file"]:
            work.append((entry, compiled(entry)))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = [text for text in pool.map(lambda one: complaints_about(*one), work) if text]
    for text in complaints:
        print(text, end="")
    print(f"{len(work)} sources read, {len(complaints)} with complaints")
    return 1 if complaints or not work else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
