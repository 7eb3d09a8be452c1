#!/usr/bin/env python3
"""Proves that check_documented.py sees what has no documentation."""

import unittest
import xml.etree.ElementTree

import check_documented

TEXT = "<briefdescription><para>What it is for.</para></briefdescription>"
NONE = "<briefdescription/><detaileddescription> </detaileddescription>"


def member(kind, name, inside, visible="public", arguments=""):
    return (f'<memberdef kind="{kind}" prot="{visible}"><name>{name}</name><argsstring>{arguments}</argsstring>'
            f"{inside}</memberdef>")


def undocumented(inside, kind="class", visible="public"):
    text = f'<compounddef kind="{kind}" prot="{visible}"><compoundname>C</compoundname>{inside}</compounddef>'
    return list(check_documented.undocumented(xml.etree.ElementTree.fromstring(text)))


class CheckDocumented(unittest.TestCase):
    def test_what_is_documented_passes(self):
        self.assertEqual(undocumented(TEXT + member("function", "f", TEXT)), [])

    def test_a_class_a_namespace_and_a_header_without_text_are_found(self):
        for kind in "class", "namespace", "file":
            self.assertEqual(undocumented(NONE, kind), [(kind, "C")])

    def test_so_are_members_and_macros(self):
        for kind in "function", "variable", "typedef", "define":
            self.assertEqual(undocumented(TEXT + member(kind, "m", NONE)), [(kind, "m")])

    def test_so_is_the_value_of_an_enumeration(self):
        values = f"<enumvalue><name>a</name>{TEXT}</enumvalue><enumvalue><name>b</name>{NONE}</enumvalue>"
        self.assertEqual(undocumented(TEXT + member("enum", "e", values + TEXT)), [("value", "e::b")])

    def test_what_is_private_or_deleted_needs_none(self):
        self.assertEqual(undocumented(TEXT + member("function", "f", NONE, "private")), [])
        self.assertEqual(undocumented(TEXT + member("function", "f", NONE, arguments="(const C &amp;)=delete")), [])
        self.assertEqual(undocumented(NONE + member("function", "f", NONE), visible="private"), [])


if __name__ == "__main__":
    unittest.main()
