#!/usr/bin/env python3
"""Proves that check_includes.py sees each kind of wrong include, and lets the right ones pass."""

import pathlib
import tempfile
import unittest

import check_includes

# The file that includes, what it includes, whether that is right.
TABLE = [
    ("foundation/path.cpp", '"VelWhiteBoard/foundation/path.h"', True),
    ("foundation/path.h", '"VelWhiteBoard/foundation/export.h"', True),
    ("foundation/path.h", "<vector>", True),
    ("foundation/path.h", "<nlohmann/json.hpp>", True),
    ("foundation/path.cpp", '"VelWhiteBoard/vectors/strokes.h"', False),
    ("foundation/path.h", '"VelWhiteBoard/vectors/strokes.h"', False),
    ("foundation/path.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("vectors/strokes.h", '"VelWhiteBoard/foundation/path.h"', True),
    ("vectors/strokes.h", '"VelWhiteBoard/services/vector_manager.h"', False),
    ("vectors/strokes.h", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("vectors/strokes.cpp", '"VelWhiteBoard/tools/tool_manager.h"', True),
    ("vectors/strokes.cpp", '"VelWhiteBoard/storage/vector_storage.h"', False),
    ("services/vector_manager.h", '"VelWhiteBoard/vectors/strokes.h"', True),
    ("services/vector_manager.h", '"VelWhiteBoard/tools/tool_manager.h"', False),
    ("services/vector_manager.cpp", '"VelWhiteBoard/tools/tool_manager.h"', True),
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
    ("foundation/path.h", "<expat.h>", False),
    ("foundation/path.h", "<simdjson.h>", False),
    ("foundation/path.cpp", "<simdjson.h>", True),
    ("foundation/path.h", '"VelWhiteBoard/foundation/secret.h"', False),
    ("foundation/secret.h", "<expat.h>", True),
]

PUBLIC = [
    "VelWhiteBoard/VelWhiteBoard.h",
    "VelWhiteBoard/foundation/path.h",
    "VelWhiteBoard/vectors/strokes.h",
    "VelWhiteBoard/services/vector_manager.h",
    "VelWhiteBoard/tools/tool_manager.h",
    "VelWhiteBoard/storage/vector_storage.h",
]


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.fill()

    def fill(self):
        for name in PUBLIC + ["VelWhiteBoard/foundation/secret.h"]:
            self.write(name, "#pragma once\n")

    def write(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
        return file

    def violations(self):
        return list(check_includes.violations(self.root, PUBLIC))

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
        self.write("VelWhiteBoard/foundation/path.h",
                   '// #include "VelWhiteBoard/tools/tool_manager.h"\n'
                   '/*\n#include "VelWhiteBoard/tools/tool_manager.h"\n*/\n')
        self.assertEqual(self.violations(), [])

    def test_an_example_includes_public_headers_only(self):
        self.write("examples/lesson/main.cpp", "#include <VelWhiteBoard/VelWhiteBoard.h>\n")
        self.assertEqual(self.violations(), [])
        self.write("examples/lesson/main.cpp", '#include "VelWhiteBoard/foundation/secret.h"\n')
        self.assertEqual(len(self.violations()), 1)


if __name__ == "__main__":
    unittest.main()
