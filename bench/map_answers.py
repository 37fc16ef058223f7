#!/usr/bin/env python3
"""map_answers.py PROGRAM CORPUS: how long single answers of the disk map take, over the bridge.

The first answer for a folder of 200,000 entries, and the answers for the levels below a folder
that has been measured. CORPUS is what make_corpus.py makes.
"""

import json
import statistics
import subprocess
import sys
import time

ROUNDS = 7


class Bridge:
    """The running program; each call returns the reply and the milliseconds it took."""

    def __init__(self, program):
        self.process = subprocess.Popen([program, "bridge"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)

    def map(self, path, force=False):
        message = {"channel": "api", "id": 1, "path": "/api/mappa",
                   "body": {"path": path, "force": force}}
        begin = time.perf_counter()
        self.process.stdin.write(json.dumps(message).encode() + b"\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        took = (time.perf_counter() - begin) * 1000
        return json.loads(line)["reply"], took

    def measured(self, path):
        reply, _ = self.map(path)
        while reply["misurando"]:
            time.sleep(0.01)
            reply, _ = self.map(path)
        return reply

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def first_answers(program, folder):
    times = []
    for _ in range(ROUNDS):
        bridge = Bridge(program)
        _, took = bridge.map(folder, force=True)
        bridge.end()
        times.append(took)
    print(f"first answer, 200,000 entries: median {statistics.median(times):.1f} ms,"
          f" worst {max(times):.1f} ms")


def levels_below(program, home):
    bridge = Bridge(program)
    waiting = [bridge.measured(home)]
    times, sizes, walks = [], [], 0
    while waiting and len(times) < 400:
        level = waiting.pop(0)
        for entry in level["items"]:
            if entry["dir"] and len(times) < 400:
                reply, took = bridge.map(level["path"] + "/" + entry["nome"])
                times.append(took)
                sizes.append(len(reply["items"]))
                walks += reply["misurando"]
                waiting.append(reply)
    bridge.end()
    print(f"levels below: {len(times)} folders, median {statistics.median(times):.2f} ms, worst"
          f" {max(times):.2f} ms ({sizes[times.index(max(times))]} entries), {walks} needed a walk")


def main():
    program, corpus = sys.argv[1:]
    first_answers(program, corpus + "/huge")
    levels_below(program, corpus + "/home")


if __name__ == "__main__":
    main()
