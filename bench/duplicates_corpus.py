#!/usr/bin/env python3
"""Makes a tree to look for duplicates in, the same one each time.

    duplicates_corpus.py FOLDER [GIB]

About GIB (default 4) in files of 1 to 24 MiB: unique sizes, equal sizes with another head, equal
heads with another tail, sets of 2 to 20 copies, and hard links to some of the copies.
"""

import os
import random
import shutil
import sys

MIB = 1 << 20


class Maker:
    def __init__(self, folder, limit):
        self.folder, self.limit = folder, limit
        self.random = random.Random(20)
        self.written = self.files = 0

    def path(self):
        folder = os.path.join(self.folder, f"c{self.files % 97}", f"s{self.files % 13}")
        os.makedirs(folder, exist_ok=True)
        self.files += 1
        return os.path.join(folder, f"file {self.files}.bin")

    def write(self, content):
        path = self.path()
        with open(path, "wb") as file:
            file.write(content)
        self.written += len(content)
        return path

    def size(self):
        return int(MIB * min(24, 1 + self.random.expovariate(0.4)))

    def unique(self):
        self.write(self.random.randbytes(self.size() + self.files))

    def other_heads(self):
        size = self.size() // 4096 * 4096
        for _ in range(self.random.randint(2, 6)):
            self.write(self.random.randbytes(size))

    def other_tails(self):
        size = self.size() // 4096 * 4096
        common = self.random.randbytes(size - 2048)
        for _ in range(self.random.randint(2, 6)):
            self.write(common + self.random.randbytes(2048))

    def copies(self):
        content = self.random.randbytes(self.size())
        paths = [self.write(content) for _ in range(self.random.choice([2, 2, 2, 3, 3, 5, 8, 20]))]
        if self.random.random() < 0.3:
            os.link(paths[0], self.path())

    def run(self):
        makers = [self.unique] * 6 + [self.other_heads] * 2 + [self.other_tails] * 2
        makers += [self.copies] * 4
        while self.written < self.limit:
            self.random.choice(makers)()
        print(f"{self.files} files, {self.written / MIB:.0f} MiB in {self.folder}")


def main():
    if len(sys.argv) < 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    folder = sys.argv[1]
    limit = int(float(sys.argv[2] if len(sys.argv) > 2 else 4) * 1024 * MIB)
    os.makedirs(folder)
    if shutil.disk_usage(folder).free < 1.2 * limit:
        os.rmdir(folder)
        print(f"not enough room for {limit} bytes in {folder}", file=sys.stderr)
        return 1
    Maker(folder, limit).run()
    return 0


if __name__ == "__main__":
    sys.exit(main())
