#!/usr/bin/env python3
"""Proves that check_includes.py sees each kind of wrong include, and lets the right ones pass."""

import pathlib
import tempfile
import unittest

import check_includes

# The file that includes, what it includes, whether that is right.
TABLE = [
    ("foundation/values/path.cpp", '"VelWhiteBoard/foundation/values/path.h"', True),
    ("foundation/values/path.h", '"VelWhiteBoard/foundation/export.h"', True),
    ("foundation/values/path.h", '"VelWhiteBoard/foundation/records/record.h"', False),
    ("foundation/values/path.cpp", '"VelWhiteBoard/foundation/records/record.h"', False),
    ("foundation/records/record.h", '"VelWhiteBoard/foundation/values/path.h"', True),
    ("foundation/json/json_reading.cpp", '"VelWhiteBoard/foundation/records/record.h"', True),
    ("foundation/plist/writer.cpp", '"VelWhiteBoard/foundation/json/json_reading.h"', False),
    ("storage/lists/list.cpp", '"VelWhiteBoard/vectors/strokes.h"', True),
    ("storage/lists/list.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("storage/vector_storage.cpp", '"VelWhiteBoard/storage/lists/list.h"', True),
    ("foundation/values/path.h", "<vector>", True),
    ("foundation/values/path.h", "<nlohmann/json.hpp>", True),
    ("foundation/values/path.cpp", '"VelWhiteBoard/vectors/strokes.h"', False),
    ("foundation/values/path.h", '"VelWhiteBoard/vectors/strokes.h"', False),
    ("foundation/values/path.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("vectors/strokes.h", '"VelWhiteBoard/foundation/values/path.h"', True),
    ("vectors/strokes.h", '"VelWhiteBoard/services/vector_manager.h"', False),
    ("vectors/strokes.h", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("vectors/strokes.cpp", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("vectors/strokes.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("services/vector_manager.h", '"VelWhiteBoard/vectors/strokes.h"', True),
    ("services/vector_manager.h", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("services/vector_manager.cpp", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("services/vector_manager.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("tools/tool_manager.h", '"VelWhiteBoard/services/vector_manager.h"', True),
    ("tools/tool_manager.h", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("tools/tool_manager.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("storage/vector_storage.h", '"VelWhiteBoard/tools/tool_manager.h"', True),
    ("storage/vector_storage.cpp", '"VelWhiteBoard/VelWhiteBoard.h"', False),
    ("VelWhiteBoard.h", '"VelWhiteBoard/storage/vector_storage.h"', True),
    ("vectors/strokes.cpp", '"strokes.h"', False),
    ("vectors/strokes.cpp", "<VelWhiteBoard/vectors/strokes.h>", False),
    ("vectors/strokes.cpp", '"VelWhiteBoard/vectors/missing.h"', False),
    ("elsewhere/thing.h", "<vector>", False),
    ("foundation/values/path.h", "<expat.h>", False),
    ("foundation/values/path.h", "<simdjson.h>", False),
    ("foundation/values/path.cpp", "<simdjson.h>", True),
    ("foundation/values/path.h", '"VelWhiteBoard/foundation/values/secret.h"', False),
    ("foundation/values/secret.h", "<expat.h>", True),
]

PUBLIC = [
    "VelWhiteBoard/VelWhiteBoard.h",
    "VelWhiteBoard/foundation/values/path.h",
    "VelWhiteBoard/vectors/strokes.h",
    "VelWhiteBoard/services/vector_manager.h",
    "VelWhiteBoard/tools/tool_manager.h",
    "VelWhiteBoard/storage/vector_storage.h",
]
INTERNAL = [
    "VelWhiteBoard/foundation/json/json_reading.h",
    "VelWhiteBoard/foundation/records/record.h",
    "VelWhiteBoard/foundation/values/secret.h",
    "VelWhiteBoard/storage/lists/list.h",
]


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.fill()

    def fill(self):
        for name in PUBLIC + INTERNAL:
            self.write(name, "#pragma once\n")

    def write(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
        return file

    def violations(self):
        return list(check_includes.violations(self.root, PUBLIC))

    def test_no_arrow_points_upward(self):
        rooms = list(check_includes.ROOMS)
        for at, room in enumerate(rooms):
            for below in check_includes.ROOMS[room]:
                self.assertLess(rooms.index(below), at, f"{room} -> {below}")

    def test_each_row_of_the_table(self):
        for name, target, right in TABLE:
            with self.subTest(file=name, includes=target):
                file = self.write(f"VelWhiteBoard/{name}", f"#include {target}\n")
                found = self.violations()
                self.assertEqual(len(found), 0 if right else 1, found)
            file.unlink()
            self.fill()

    def test_a_violation_names_file_and_line(self):
        self.write("VelWhiteBoard/tools/tool_manager.h",
                   '/* two\nlines */\n#  include  "VelWhiteBoard/storage/vector_storage.h"\n')
        found, = self.violations()
        self.assertTrue(found.startswith("VelWhiteBoard/tools/tool_manager.h:3: "), found)

    def test_a_comment_is_no_include(self):
        self.write("VelWhiteBoard/foundation/values/path.h",
                   '// #include "VelWhiteBoard/tools/tool_manager.h"\n'
                   '/*\n#include "VelWhiteBoard/tools/tool_manager.h"\n*/\n')
        self.assertEqual(self.violations(), [])

    def test_an_example_includes_public_headers_only(self):
        self.write("examples/lesson/main.cpp", "#include <VelWhiteBoard/VelWhiteBoard.h>\n")
        self.assertEqual(self.violations(), [])
        self.write("examples/lesson/main.cpp", '#include "VelWhiteBoard/foundation/values/secret.h"\n')
        self.assertEqual(len(self.violations()), 1)

    def test_the_python_module_includes_public_headers_only(self):
        self.write("python/records.cpp", "#include <VelWhiteBoard/VelWhiteBoard.h>\n")
        self.assertEqual(self.violations(), [])
        self.write("python/records.cpp", "#include <VelWhiteBoard/foundation/values/secret.h>\n")
        self.assertEqual(len(self.violations()), 1)


if __name__ == "__main__":
    unittest.main()
