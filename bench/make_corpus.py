#!/usr/bin/env python3
"""Makes a folder tree like a real home for measuring walks, the same one each time.

  home/   300,000 files in 30,000 folders, some links, hard links and empty folders
  huge/   200,000 files in one folder
  deep/   one chain of 2,000 folders with a file in each

Small files are written so that they take blocks; larger ones are sparse.
"""

import argparse
import os
import random

WORDS = ("Documents src cache Photos node_modules lib include assets target build data Mail "
         "Library index img test fonts locale scripts docs bin config history vendor").split()
ENDINGS = ".txt .js .png .h .json .o .md .jpg .log .db .py .ts .svg .pdf".split()
SMALL = os.urandom(64 * 1024)


def file_size(rng):
    size = int(rng.lognormvariate(8.2, 1.9))
    return size * 400 if rng.random() < 0.01 else size


def make_file(folder, name, size):
    """Relative to an open folder: the deep chain's paths are too long for one call."""
    descriptor = os.open(name, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644, dir_fd=folder)
    try:
        os.write(descriptor, SMALL[:min(size, len(SMALL))])
        if size > len(SMALL):
            os.ftruncate(descriptor, size)
    finally:
        os.close(descriptor)


def make_home(top, files, folders, rng):
    paths = [top]
    os.mkdir(top)
    for i in range(folders - 1):
        # Near relatives are likelier parents, which gives trees some ten levels deep.
        parent = paths[rng.randrange(max(0, len(paths) - 400), len(paths))] \
            if rng.random() < 0.7 else rng.choice(paths)
        hidden = "." if rng.random() < 0.05 else ""
        path = f"{parent}/{hidden}{rng.choice(WORDS)}-{i}"
        os.mkdir(path)
        paths.append(path)
    weights = [rng.paretovariate(1.2) for _ in paths]
    last = None
    for i, path in enumerate(rng.choices(paths, weights, k=files)):
        name = f"{rng.choice(WORDS)}_{i:06d}{rng.choice(ENDINGS)}"
        kind = rng.random()
        if kind < 0.005 and last:
            os.link(last, f"{path}/{name}")
            continue
        if kind < 0.015:
            os.symlink(last or "nowhere", f"{path}/{name}.link")
        folder = os.open(path, os.O_RDONLY)
        make_file(folder, name, file_size(rng))
        os.close(folder)
        last = f"{path}/{name}"


def make_huge(top, files, rng):
    os.mkdir(top)
    folder = os.open(top, os.O_RDONLY)
    for i in range(files):
        make_file(folder, f"frame_{i:07d}.raw", rng.choice((0, 900, 3000, 6_000_000)))
    os.close(folder)


def make_deep(top, levels):
    os.mkdir(top)
    folder = os.open(top, os.O_RDONLY)
    for _ in range(levels):
        make_file(folder, "f", 5000)
        os.mkdir("d", dir_fd=folder)
        below = os.open("d", os.O_RDONLY, dir_fd=folder)
        os.close(folder)
        folder = below
    os.close(folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="made here; must not exist")
    parser.add_argument("--scale", type=float, default=1.0, help="share of the full size")
    arguments = parser.parse_args()
    rng = random.Random(20240229)
    scale = arguments.scale
    top = arguments.folder
    making = top + ".making"
    os.makedirs(making)
    make_home(f"{making}/home", int(300_000 * scale), int(30_000 * scale), rng)
    make_huge(f"{making}/huge", int(200_000 * scale), rng)
    make_deep(f"{making}/deep", max(1, int(2_000 * scale)))
    os.rename(making, top)


if __name__ == "__main__":
    main()
