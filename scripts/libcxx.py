#!/usr/bin/env python3
"""libcxx.py BUILD: reads every source that BUILD compiles once more, with clang's own C++ library
(the one macOS has) in place of the system's, and shows what it complains about. Nothing is built.
What only Linux compiles stays out.
"""

import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

ONLY_LINUX = "/platform/linux/"


def complaints_about(entry):
    command = shlex.split(entry["command"])
    at = command.index("-o")
    del command[at : at + 2]
    command.remove("-c")
    command += ["-stdlib=libc++", "-fsyntax-only"]
    done = subprocess.run(command, cwd=entry["directory"], stderr=subprocess.PIPE, text=True)
    return done.stderr if done.returncode != 0 else ""


def main(build):
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = [entry for entry in json.load(file) if ONLY_LINUX not in entry["file"]]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = [text for text in pool.map(complaints_about, entries) if text]
    for text in complaints:
        print(text, end="")
    print(f"{len(entries)} sources read, {len(complaints)} with complaints")
    return 1 if complaints or not entries else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
