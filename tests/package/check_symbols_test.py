#!/usr/bin/env python3
"""Proves that check_symbols.py sees what is exported by mistake, and what is exported no more.

    check_symbols_test.py NM COMPILER
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import check_symbols

NM, COMPILER = sys.argv[1:3]

SOURCE = """
#include <map>
#include <memory>
#include <string>
#include <vector>
#define SHOWN __attribute__((visibility("default")))
namespace VelWhiteBoard {
using Lists = std::map<std::string, std::vector<int>>;
struct SHOWN Board {
  Board();
  void name(const std::string& text, const Lists& lists);
};
Board::Board() {}
void Board::name(const std::string&, const Lists&) {}
SHOWN std::shared_ptr<Board> board() { return std::make_shared<Board>(); }
void internal() {}
}
"""
NAMES = [
    "VelWhiteBoard::Board::Board()",
    "VelWhiteBoard::Board::name(std::string const&, std::map<std::string, std::vector<int>> const&)",
    "VelWhiteBoard::board()",
]
EXPORTS = pathlib.Path(__file__).resolve().parents[2] / "VelWhiteBoard/exports.map"


class CheckSymbols(unittest.TestCase):
    def exported(self, source=SOURCE, options=(f"-Wl,--version-script={EXPORTS}",)):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "source.cpp"
            file.write_text(source, encoding="utf-8")
            library = pathlib.Path(folder) / "library.so"
            subprocess.run([COMPILER, "-std=c++20", "-fPIC", "-shared", "-fvisibility=hidden",
                            "-fvisibility-inlines-hidden", *options, file, "-o", library], check=True)
            return check_symbols.exported(NM, library)

    def complaints(self, names):
        return list(check_symbols.complaints(names, NAMES))

    def test_the_listed_names_pass(self):
        self.assertEqual(self.complaints(self.exported()), [])

    def test_a_name_that_is_exported_by_mistake_is_named(self):
        names = self.exported(SOURCE.replace("void internal", "SHOWN void internal"))
        self.assertEqual(self.complaints(names), ["new:  VelWhiteBoard::internal()"])

    def test_a_name_that_is_exported_no_more_is_named(self):
        names = self.exported(SOURCE.replace("SHOWN std::shared_ptr", "std::shared_ptr"))
        self.assertEqual(self.complaints(names), ["gone: VelWhiteBoard::board()"])

    def test_an_argument_that_changes_is_a_name_that_goes_and_one_that_comes(self):
        names = self.exported(SOURCE.replace("<int>", "<long>"))
        changed = NAMES[1].replace("<int>", "<long>")
        self.assertEqual(self.complaints(names), [f"new:  {changed}", f"gone: {NAMES[1]}"])

    def test_what_a_library_without_the_script_leaks_is_named(self):
        found = self.complaints(self.exported(options=()))
        self.assertTrue(any("std::_Sp_counted_ptr_inplace" in line for line in found), found)
        self.assertTrue(all(line.startswith("new:  ") for line in found), found)

    def test_default_arguments_are_left_out(self):
        shortened = check_symbols.shortened(
            "VelWhiteBoard::f[abi:cxx11](std::vector<std::__cxx11::basic_string<char, std::char_traits<char>, "
            "std::allocator<char> >, std::allocator<std::__cxx11::basic_string<char, std::char_traits<char>, "
            "std::allocator<char> > > >, bool (*)(int, std::span<double const, 18446744073709551615ul>)) const")
        self.assertEqual(
            shortened, "VelWhiteBoard::f(std::vector<std::string>, bool (*)(int, std::span<double const>)) const")

    def test_a_comment_in_the_list_is_no_name(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "list.txt"
            file.write_text(check_symbols.HEADING + "\n".join(NAMES) + "\n", encoding="utf-8")
            self.assertEqual(check_symbols.listed_in(file), NAMES)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
