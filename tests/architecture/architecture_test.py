#!/usr/bin/env python3
"""Proves on made-up trees that architecture.py complains where it should and only there."""

import os
import tempfile
import unittest

import architecture

LISTS = {
    "CMakeLists.txt": "add_subdirectory(PellakCleaner)\nadd_subdirectory(tests)\n",
    "PellakCleaner/CMakeLists.txt": "add_subdirectory(api) # add_subdirectory(trash)\n",
    "PellakCleaner/api/CMakeLists.txt": "pellak_library(pellak_api SOURCES Router.cpp)\n",
    "tests/CMakeLists.txt": "foreach(folder api)\nadd_subdirectory(${folder})\nendforeach()\n",
    "tests/api/CMakeLists.txt": (
        "pellak_test(test_api SOURCES RouterTest.cpp ${CMAKE_SOURCE_DIR}/tests/fakes/Fake.cpp)\n"
    ),
}
SOURCES = {
    "PellakCleaner/platform/Result.h": "#include <string>\n",
    "PellakCleaner/platform/Files.h": '#include "platform/Result.h"\n',
    "PellakCleaner/platform/Native.h": '#include "platform/Files.h"\n',
    "PellakCleaner/platform/posix/Descriptor.h": "#include <unistd.h>\n#ifdef __APPLE__\n#endif\n",
    "PellakCleaner/platform/linux/Native.h": '#include "platform/Native.h"\n#include <gio/gio.h>\n',
    "PellakCleaner/PellakCore/base/Json.h": "#include <fmt/format.h>\n#include <boost/json.hpp>\n",
    "PellakCleaner/PellakCore/Engine.h": '#include "scanners/walker/Walker.h"\n',
    "PellakCleaner/scanners/walker/Walker.h": (
        '#include "PellakCore/base/Json.h"\n#include <sys/stat.h>\n'
    ),
    "PellakCleaner/scanners/regole/Scanner.h": '#include "PellakCore/Engine.h"\n',
    "PellakCleaner/commands/Comandi.h": '#include "platform/Files.h"\n',
    "PellakCleaner/tools/Righe.h": "#pragma once\n",
    "PellakCleaner/tools/firewall/Linux.h": '#include "tools/Righe.h"\n',
    "PellakCleaner/tools/batteria/Batteria.h": '#include "commands/Comandi.h"\n',
    "PellakCleaner/updates/Feed.h": "#pragma once\n",
    "PellakCleaner/updates/ConfrontoVersioni.h": "#pragma once\n",
    "PellakCleaner/trash/Registro.h": '#include "PellakCore/Engine.h"\n',
    "PellakCleaner/api/Router.h": '#include "tools/firewall/Linux.h"\n',
    "PellakCleaner/api/Router.cpp": '#include "api/Router.h"\n',
    "PellakCleaner/shell/Bridge.h": '#include "api/Router.h"\n',
    "PellakCleaner/app/Versione.h.in": "#pragma once\n",
    "PellakCleaner/app/Main.h": (
        '#include "platform/Native.h"\n#include "app/Versione.h"\n#include <termios.h>\n'
    ),
    "tests/api/RouterTest.cpp": "\n",
    "tests/fakes/Fake.cpp": "\n",
}


def complaints(**changes):
    """What the check says of the good tree with these files changed; keys are paths."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in {**LISTS, **SOURCES, **changes}.items():
            full = os.path.join(root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write(text)
        return architecture.Check(os.path.realpath(root)).run()


class ArchitectureTest(unittest.TestCase):
    def assert_complaint(self, path, text, expected):
        found = complaints(**{path: text})
        self.assertEqual(len(found), 1, f"{text!r} in {path}: {found}")
        self.assertTrue(found[0].startswith(path + ":"), found)
        self.assertIn(expected, found[0])

    def test_the_good_tree_has_no_complaint(self):
        self.assertEqual(complaints(), [])

    def test_arrows_that_are_not_in_the_table(self):
        for including, included in [
            ("platform/Clock.h", "platform/Files.h"),
            ("platform/posix/X.h", "platform/linux/Native.h"),
            ("PellakCore/base/X.h", "platform/Files.h"),
            ("PellakCore/X.h", "platform/Native.h"),
            ("scanners/walker/X.h", "PellakCore/Engine.h"),
            ("tools/firewall/X.h", "tools/batteria/Batteria.h"),
            ("api/X.h", "shell/Bridge.h"),
            ("shell/X.h", "trash/Registro.h"),
        ]:
            with self.subTest(including=including, included=included):
                self.assert_complaint(
                    f"PellakCleaner/{including}", f'#include "{included}"\n', "may not include"
                )

    def test_arrows_by_exception(self):
        for including, included in [
            ("PellakCore/base/X.h", "platform/Result.h"),
            ("tools/firewall/X.h", "updates/ConfrontoVersioni.h"),
            ("scanners/aggiornamenti/X.h", "updates/Feed.h"),
            ("app/X.h", "platform/posix/Descriptor.h"),
        ]:
            with self.subTest(including=including):
                text = f'#include "{included}"\n'
                self.assertEqual(complaints(**{f"PellakCleaner/{including}": text}), [])

    def test_includes_that_are_not_from_the_top_of_the_tree(self):
        path = "PellakCleaner/api/X.h"
        self.assert_complaint(path, '#include "Router.h"\n', "is no file of")
        self.assert_complaint(path, '#include "api/../api/Router.h"\n', "is no file of")
        self.assert_complaint(path, "#include PELLAK_HEADER\n", "no plain file name")
        self.assert_complaint("PellakCleaner/other/X.h", "\n", "lies in no room")

    def test_headers_of_the_system_and_of_libraries(self):
        for path, header in [
            ("api/X.h", "sys/stat.h"),
            ("app/X.h", "sys/wait.h"),
            ("PellakCore/X.h", "string.h"),
            ("PellakCore/X.h", "boost/json.hpp"),
            ("platform/Clock.h", "fmt/format.h"),
        ]:
            with self.subTest(path=path, header=header):
                self.assert_complaint(f"PellakCleaner/{path}", f"#include <{header}>\n", header)

    def test_os_conditionals(self):
        for line in [
            "#if defined(__APPLE__)",
            "#ifdef __linux__",
            "#  ifndef _WIN32",
            "#if 0\n#elif TARGET_OS_OSX",
            "#if /* why */ __has_include(<sys/x.h>)",
        ]:
            with self.subTest(line=line):
                found = complaints(**{"PellakCleaner/shell/X.h": line + "\n#endif\n"})
                self.assertEqual(len(found), 1, found)
                self.assertIn("OS conditional", found[0])
        harmless = '#if defined(__clang__)\n#endif\n// #ifdef __linux__\nauto x = "#if __APPLE__";\n'
        self.assertEqual(complaints(**{"PellakCleaner/shell/X.h": harmless}), [])

    def test_parts_that_one_library_lacks(self):
        for line in [
            "std::jthread t;",
            "#include <format>",
            'auto s = std::format("{}", 1\'000);',
            "std::atomic<std::shared_ptr<int>> p;",
            "auto p = std::make_shared<char[]>(9);",
            "std::from_chars(a, b, x, std::chars_format::general);",
        ]:
            with self.subTest(line=line):
                self.assert_complaint("PellakCleaner/shell/X.h", line + "\n", "not everywhere")
        harmless = "// std::jthread\n/*\n std::pmr */ int a = 1'0; // std::format isn't\n"
        harmless += 'fmt::format("std::jthread");\nconst char* t = R"(std::print)";\n'
        self.assertEqual(complaints(**{"PellakCleaner/shell/X.h": harmless}), [])
        self.assertEqual(complaints(**{"PellakCleaner/platform/linux/X.h": "std::jthread t;"}), [])

    def test_sources_that_nothing_compiles(self):
        for path in [
            "tests/api/OtherTest.cpp",
            "tests/fuzz/JsonFuzz.cpp",
            "PellakCleaner/api/Rotte.cpp",
            "PellakCleaner/platform/macos/DialogsMac.mm",
        ]:
            with self.subTest(path=path):
                self.assert_complaint(path, "\n", "names it")
        # A list that nothing reaches, and a name that is only in a comment.
        for path, text in [
            ("PellakCleaner/trash/CMakeLists.txt", "pellak_library(t SOURCES Registro.cpp)\n"),
            ("PellakCleaner/api/CMakeLists.txt", "# Registro.cpp\nRouter.cpp"),
        ]:
            source = os.path.dirname(path) + "/Registro.cpp"
            with self.subTest(path=path):
                found = complaints(**{path: text, source: "\n"})
                self.assertEqual(len(found), 1, found)
                self.assertTrue(found[0].startswith(source + ":"), found)

    def test_a_tree_without_sources_is_no_success(self):
        with tempfile.TemporaryDirectory() as root:
            with open(os.path.join(root, "CMakeLists.txt"), "w", encoding="utf-8"):
                pass
            self.assertEqual(len(architecture.Check(root).run()), 1)


if __name__ == "__main__":
    unittest.main()
