#!/usr/bin/env python3
"""Shows that the check of instruction counts can fail."""

import unittest

import instruction_counts


class TheCheck(unittest.TestCase):
    RECORDED = {"modelWithJSON": 1_000, "saveVector": 2_000}

    def problems(self, **counts):
        return list(instruction_counts.problems(counts, self.RECORDED))

    def test_takes_counts_up_to_a_fifth_above_the_recorded(self):
        self.assertEqual(self.problems(modelWithJSON=1_200, saveVector=1), [])

    def test_finds_a_count_beyond_that(self):
        found = self.problems(modelWithJSON=1_000, saveVector=2_401)
        self.assertEqual(len(found), 1)
        self.assertIn("saveVector: 2,401 instructions, 20% more", found[0])

    def test_finds_that_nothing_was_counted(self):
        self.assertIn("nothing was counted", self.problems(saveVector=0)[0])

    def test_finds_a_count_that_was_never_recorded(self):
        self.assertIn("no count is recorded", self.problems(somethingNew=5)[0])

    def test_fails_without_a_record_only_with_gcc_under_ci(self):
        missing = instruction_counts.missing_record_is_failure
        self.assertTrue(missing("GNU x86_64 -O1 -g", {"CI": "true"}))
        self.assertFalse(missing("GNU x86_64 -O1 -g", {}))
        self.assertFalse(missing("Clang x86_64 -O1 -g", {"CI": "true"}))
        self.assertFalse(missing("GNU x86_64 -O1 -g with sanitizers", {"CI": "true"}))


if __name__ == "__main__":
    unittest.main()
