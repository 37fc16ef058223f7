#!/usr/bin/env python3
"""Reads the source tree and complains about what breaks its architecture.

    architecture.py [ROOT]

Complains about an include that is no arrow of rooms.py, an OS conditional, OS header or missing
C++ library part outside the back ends, and a source that no CMakeLists.txt names. Prints one line
for each complaint; the status is 1 when there is one.
"""

import os
import re
import sys

import rooms

SOURCE_ENDINGS = (".h", ".h.in", ".cpp", ".mm")
DIRECTIVE = re.compile(r"^[ \t]*#[ \t]*(\w+)(.*)$")
INCLUDED = re.compile(r'^\s*(?:"([^"]+)"|<([^>]+)>)')


def files_below(folder):
    for parent, folders, names in os.walk(folder):
        folders[:] = sorted(name for name in folders if name != "node_modules")
        for name in sorted(names):
            yield os.path.join(parent, name)


def read(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


# Numbers (their separators are no quotes), raw strings, strings, characters, comments.
TOKEN = re.compile(
    r"""\b\d[\w']*|R"([^\s()\\]{0,16})\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'"""
    r"""|//[^\n]*|/\*.*?\*/""",
    re.DOTALL,
)


def code_of(text):
    """The text without comments, every line kept in its place; literals stay."""

    def keep(match):
        found = match.group()
        if found.startswith("//"):
            return ""
        if found.startswith("/*"):
            return " " + "\n" * found.count("\n")
        return found

    return TOKEN.sub(keep, text)


class Check:
    def __init__(self, root):
        self.root = root
        self.tree = os.path.join(root, "PellakCleaner")
        self.complaints = []
        self.sources = 0

    def complain(self, path, number, text):
        where = os.path.relpath(path, self.root)
        self.complaints.append(f"{where}:{number}: {text}" if number else f"{where}: {text}")

    def run(self):
        for path in files_below(self.tree):
            if path.endswith(SOURCE_ENDINGS):
                self.sources += 1
                self.check_source(path)
        self.check_compiled()
        if self.sources == 0:
            self.complain(self.tree, 0, "no source found")
        return self.complaints

    def check_source(self, path):
        inside = os.path.relpath(path, self.tree)
        room = rooms.room_of(inside)
        if room is None:
            self.complain(path, 0, "lies in no room of tests/architecture/rooms.py")
            return
        for number, line in enumerate(code_of(read(path)).split("\n"), 1):
            directive = DIRECTIVE.match(line)
            if directive and directive.group(1) in ("include", "import"):
                self.check_include(path, number, inside, room, directive.group(2))
            elif directive and directive.group(1) in ("if", "ifdef", "ifndef", "elif"):
                if room not in rooms.BACK_ENDS and rooms.OS_MACRO.search(directive.group(2)):
                    self.complain(path, number, "OS conditional outside the back ends")
            if room != "linux":
                self.check_library(path, number, line)

    def check_include(self, path, number, inside, room, rest):
        included = INCLUDED.match(rest)
        if not included:
            self.complain(path, number, "an include that is no plain file name")
            return
        ours, header = included.groups()
        if ours is None:
            reason = rooms.may_use_header(room, header)
            if reason:
                self.complain(path, number, reason)
        elif not self.exists(ours):
            self.complain(path, number, f'"{ours}" is no file of PellakCleaner/')
        elif not rooms.may_include(inside, ours):
            self.complain(path, number, f'{room} may not include "{ours}"')

    def exists(self, ours):
        path = os.path.join(self.tree, ours)
        return os.path.normpath(ours) == ours and (
            os.path.isfile(path) or os.path.isfile(path + ".in")
        )

    def check_library(self, path, number, line):
        line = re.sub(r'"(?:\\.|[^"\\])*"', '""', line)  # literals aside
        for pattern, name in rooms.MISSING_ON_MACOS:
            if pattern.search(line):
                self.complain(path, number, f"{name} is not everywhere we build")

    def check_compiled(self):
        """Every source is named by a CMakeLists.txt that the build reaches."""
        named = set()
        self.visit_cmake(self.root, named)
        for top in ("PellakCleaner", "tests", "bench"):
            for path in files_below(os.path.join(self.root, top)):
                if path.endswith((".cpp", ".mm")) and path not in named:
                    self.complain(path, 0, "no CMakeLists.txt that the build reaches names it")

    def visit_cmake(self, folder, named):
        """Collects the sources named in a folder's CMakeLists.txt and in those it adds."""
        text = re.sub(r"#[^\n]*", "", read(os.path.join(folder, "CMakeLists.txt")))
        text = re.sub(r"\$\{(CMAKE|PROJECT)_SOURCE_DIR\}", self.root, text)
        text = text.replace("${CMAKE_CURRENT_SOURCE_DIR}", folder)
        for word in re.findall(r'[^\s()";]+', text):
            path = os.path.normpath(os.path.join(folder, word))
            if word.endswith((".cpp", ".mm")):
                named.add(path)
            elif path.startswith(folder + os.sep) and os.path.isfile(
                os.path.join(path, "CMakeLists.txt")
            ):
                self.visit_cmake(path, named)


def main(arguments):
    here = os.path.dirname(os.path.abspath(__file__))
    root = os.path.abspath(arguments[0] if arguments else os.path.join(here, "..", ".."))
    check = Check(root)
    complaints = check.run()
    for complaint in complaints:
        print(complaint)
    print(f"{check.sources} sources read, {len(complaints)} complaints")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
