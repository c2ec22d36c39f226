"""That a target is met exactly when the figures say so. Run before every measurement, and by itself with python3 -B."""
import unittest

import programs
import targets
from measuring import Figure, Measured
from process import Run


def measured(entries, seconds, peak=0):
    """`seconds` by name of the program; `peak` in sizes of both files, which are 1,000 bytes an entry."""
    size = entries * 1000
    figures = {name: Figure([Run(wall=each, cpu=each, peak=int(peak * size), status=0)], name.startswith("cfgmig"))
               for name, each in seconds.items()}
    return Measured(entries, size, figures, [], [])


def verdict(beginning, *sizes, start=None):
    found = [each for each in targets.verdicts(sizes, start or {}) if each.text.startswith(beginning)]
    assert len(found) == 1, beginning
    return str(found[0]).split(":")[0]


class Targets(unittest.TestCase):
    def test_ratio_has_an_upper_bound(self):
        for apply, expected in ((5.0, "met"), (5.1, "NOT MET")):
            size = measured(100000, {"cfgmig apply": apply, programs.LIMIT_WRITE: 1.0})
            self.assertEqual(verdict("apply takes at most 5 times", size), expected)

    def test_ratio_has_a_lower_bound(self):
        for python, expected in ((12.0, "met"), (11.9, "NOT MET")):
            size = measured(100000, {"cfgmig compare": 1.0, programs.PYTHON_DIFFERENCE: python})
            self.assertEqual(verdict("compare is at least 12 times", size), expected)

    def test_ratio_of_another_size_does_not_count(self):
        size = measured(10000, {"cfgmig apply": 1.0, programs.LIMIT_WRITE: 1.0})
        self.assertEqual(verdict("apply takes at most 5 times", size), "not measured")

    def test_growth_of_each_command_counts(self):
        first = measured(10000, {"cfgmig list": 1.0, "cfgmig why": 1.0, programs.LIMIT_READ: 1.0})
        for why, expected in ((150.0, "met"), (200.0, "NOT MET")):  # exponents 1.09 and 1.15
            last = measured(1000000, {"cfgmig list": 100.0, "cfgmig why": why, programs.LIMIT_READ: 10000.0})
            self.assertEqual(verdict("from 10,000", first, last), expected)

    def test_growth_of_a_command_that_failed_is_not_met(self):
        first = measured(10000, {"cfgmig list": 1.0, "cfgmig why": 1.0})
        last = measured(1000000, {"cfgmig list": 100.0})
        self.assertEqual(verdict("from 10,000", first, last), "NOT MET")

    def test_memory_counts_for_large_pairs_only(self):
        small = measured(10000, {"cfgmig list": 1.0}, peak=9)
        for peak, expected in ((3.0, "met"), (3.1, "NOT MET")):
            large = measured(1000000, {"cfgmig list": 1.0}, peak=peak)
            self.assertEqual(verdict("peak memory", small, large), expected)

    def test_memory_of_a_command_that_failed_is_not_met(self):
        large = measured(1000000, {"cfgmig list": 1.0}, peak=1)
        large.failures.append("cfgmig apply: not enough memory")
        self.assertEqual(verdict("peak memory", large), "NOT MET")

    def test_slowest_start_counts(self):
        for slowest, expected in ((5.0, "met"), (5.1, "NOT MET")):
            start = {"one line": 1.0, "plan 4.1": 2.0, "plan 6.0": slowest}
            self.assertEqual(verdict("plan on a shipped example", start=start), expected)


if __name__ == "__main__":
    unittest.main()
