#!/usr/bin/env python3
"""Shows that the report of the benchmarks tells a missed figure from a kept one, and fails on it.

    report_test.py BENCHMARKS    the folder with report.py
"""

import sys
import unittest

sys.path.insert(0, sys.argv.pop())

import report  # noqa: E402
import results  # noqa: E402
import targets  # noqa: E402


class TheReport(unittest.TestCase):
    def setUp(self):
        self.measured = results.Results()

    def target(self, figure, baseline, held, relation="times", wished=None):
        return targets.Target("work", "us", lambda _: figure, lambda _: baseline, held, relation, wished)

    def verdict(self, *arguments):
        return report.verdict(self.target(*arguments), self.measured)

    def fails(self, *arguments):
        return bool(report.failures([self.target(*arguments)], self.measured))

    def test_a_ratio_up_to_its_limit_is_met(self):
        self.assertEqual(self.verdict(20, 10, 2.0), "met")
        self.assertFalse(self.fails(20, 10, 2.0))

    def test_a_ratio_somewhat_beyond_its_limit_is_told_but_no_failure(self):
        self.assertEqual(self.verdict(24, 10, 2.0), "missed by 20%")
        self.assertFalse(self.fails(24, 10, 2.0))

    def test_a_ratio_far_beyond_its_limit_is_a_failure(self):
        self.assertEqual(self.verdict(26, 10, 2.0), "MISSED by 30%")
        self.assertTrue(self.fails(26, 10, 2.0))

    def test_a_limit_may_be_one_of_the_distance_or_of_the_figure(self):
        self.assertFalse(self.fails(110, 10, 100, "more"))
        self.assertTrue(self.fails(140, 10, 100, "more"))
        self.assertFalse(self.fails(100, 1, 100, "itself"))
        self.assertTrue(self.fails(130, 1000, 100, "itself"))

    def test_a_limit_of_nothing_is_met_by_nothing_only(self):
        self.assertEqual(self.verdict(0, 1, 0, "itself"), "met")
        self.assertEqual(self.verdict(1, 1, 0, "itself"), "MISSED")
        self.assertTrue(self.fails(1, 1, 0, "itself"))

    def test_a_wish_is_told_and_never_a_failure(self):
        reached, missed = self.target(20, 10, 3.0, wished=2.0), self.target(29, 10, 3.0, wished=2.0)
        self.assertEqual(report.row(reached, self.measured)[4:], ["3 x", "met", "2 x, reached"])
        self.assertEqual(report.row(missed, self.measured)[4:], ["3 x", "met", "2 x, not yet"])
        self.assertFalse(report.failures([reached, missed], self.measured))

    def test_a_wish_alone_has_no_verdict(self):
        alone = self.target(900, 10, None, wished=2.0)
        self.assertEqual(report.row(alone, self.measured)[4:], ["", "", "2 x, not yet"])
        self.assertFalse(report.failures([alone], self.measured))

    def test_the_least_of_all_repetitions_counts_and_summaries_do_not(self):
        run = {"name": "fold/10/iterations:1", "run_type": "iteration", "time_unit": "ms"}
        self.measured.add_benchmarks({"benchmarks": [
            {**run, "real_time": 3.0, "max_us": 7.0},
            {**run, "real_time": 2.0, "max_us": 9.0},
            {**run, "run_type": "aggregate", "real_time": 1.0},
        ]}, results.WAIT)
        self.assertEqual(self.measured["fold/10"], 2e-3)
        self.assertEqual(self.measured["fold/10.max_us"], 7.0)

    def test_half_of_the_repetitions_exceed_the_median(self):
        for figure in (9.0, 1.0, 5.0):
            self.measured.add("longest", figure)
        self.assertEqual(self.measured.median("longest"), 5.0)

    def test_work_is_measured_in_processor_time(self):
        run = {"name": "fold", "run_type": "iteration", "time_unit": "s", "real_time": 9.0, "cpu_time": 4.0}
        self.measured.add_benchmarks({"benchmarks": [run]}, results.WORK)
        self.assertEqual(self.measured["fold"], 4.0)

    def test_a_benchmark_that_failed_is_no_figure(self):
        with self.assertRaises(RuntimeError):
            self.measured.add_benchmarks({"benchmarks": [
                {"name": "fold", "run_type": "iteration", "error_occurred": True, "error_message": "broken"}]},
                results.WORK)

    def test_the_table_replaces_the_one_between_the_marks(self):
        document = "a\n<!-- figures: begin -->\nold\nolder\n<!-- figures: end -->\nb\n"
        self.assertEqual(report.with_table(document, "new"),
                         "a\n<!-- figures: begin -->\nnew\n<!-- figures: end -->\nb\n")
        with self.assertRaises(ValueError):
            report.with_table("no marks", "new")

    def test_a_table_for_a_document_is_not_padded(self):
        rows = [["What", "Figure"], ["longer than that", "1"]]
        self.assertEqual(report.as_table(rows, aligned=False),
                         "| What | Figure |\n|---|---|\n| longer than that | 1 |")
        self.assertEqual(report.as_table(rows, aligned=True).splitlines()[0], "| What             | Figure |")

    def test_every_target_can_be_worked_out(self):
        class Anything:
            def __getitem__(self, name):
                return 2.0

            median = __getitem__

        for target in targets.TARGETS:
            self.assertEqual(len(report.row(target, Anything())), len(report.HEAD), target.what)


if __name__ == "__main__":
    unittest.main()
