#!/usr/bin/env python3
"""Brings lists of equal files on standard input into one form: a sorted line of inode numbers for
each set of at least two files on disk.

Read are paths one a line with an empty line after each set, or a table whose lines begin with
DUPTYPE_ and name the set in the second column and the path from the eighth on.
"""

import os
import sys


def paths_by_set(lines):
    """Pairs of a set's name and a path."""
    number = 0
    for line in lines:
        line = line.rstrip("\n")
        if line.startswith("DUPTYPE_"):
            columns = line.split(" ", 7)
            yield abs(int(columns[1])), columns[7]
        elif line.startswith("/"):
            yield number, line
        else:
            number -= 1


def main():
    sys.stdin.reconfigure(errors="surrogateescape")
    sets = {}
    for name, path in paths_by_set(sys.stdin):
        sets.setdefault(name, set()).add(os.lstat(path).st_ino)
    for inodes in sorted(sorted(files) for files in sets.values() if len(files) > 1):
        print(*inodes)


if __name__ == "__main__":
    main()
