"""What must be reached, and whether it is."""
import dataclasses
import math

import programs

TARGET_SIZE = 100000
GROWTH_FROM, GROWTH_TO = 10000, 1000000
GROWTH_AT_MOST = 1.1
MEMORY_AT_MOST = 3.0  # sizes of both files together
START_AT_MOST = 5.0  # times a program that prints one line


@dataclasses.dataclass(frozen=True)
class Ratio:
    """At 100,000 entries the median time of `slower` divided by that of `faster` is at least or at most `bound`."""
    text: str
    dividend: str
    divisor: str
    bound: float
    at_most: bool = False


RATIOS = [
    Ratio("apply takes at most 5 times the limit", "cfgmig apply", programs.LIMIT_WRITE, 5, at_most=True),
    Ratio("compare takes at most 5 times the reading half", "cfgmig compare", programs.LIMIT_READ, 5, at_most=True),
    Ratio("by the limit written plainly, apply takes at most 5 times", "cfgmig apply", programs.PLAIN_WRITE, 5,
          at_most=True),
    Ratio("by the limit written plainly, compare takes at most 5 times", "cfgmig compare", programs.PLAIN_READ, 5,
          at_most=True),
    Ratio("apply is at least 12 times faster than python3-ldap", programs.PYTHON_MERGE, "cfgmig apply", 12),
    Ratio("compare is at least 12 times faster than python3-ldap", programs.PYTHON_DIFFERENCE, "cfgmig compare", 12),
    Ratio("apply is at least 30 times faster than Net::LDAP::LDIF", programs.PERL_MERGE, "cfgmig apply", 30),
    Ratio("compare is at least 30 times faster than Net::LDAP::LDIF", programs.PERL_DIFFERENCE, "cfgmig compare", 30),
    Ratio("apply is faster than C over libldap's reader", programs.C_MERGE, "cfgmig apply", 1),
    Ratio("compare is faster than C over libldap's reader", programs.C_DIFFERENCE, "cfgmig compare", 1),
]


@dataclasses.dataclass(frozen=True)
class Verdict:
    text: str
    figure: str  # empty when nothing was measured
    met: bool

    def __str__(self):
        if not self.figure:
            return f"not measured: {self.text}"
        return f"{'met' if self.met else 'NOT MET'}: {self.text}: {self.figure}"


def growth(smaller, larger, name, what="wall"):
    """The exponent of time between two pairs, None when a program was not measured on both."""
    if name not in smaller.figures or name not in larger.figures:
        return None
    times = [getattr(each.figures[name], what) for each in (smaller, larger)]
    return math.log(times[1] / times[0]) / math.log(larger.entries / smaller.entries)


def ratio_verdict(target, measured):
    size = next((each for each in measured if each.entries == TARGET_SIZE), None)
    if size is None or target.dividend not in size.figures or target.divisor not in size.figures:
        return Verdict(target.text, "", False)
    dividend, divisor = size.figures[target.dividend], size.figures[target.divisor]
    ratio = dividend.wall / divisor.wall
    met = ratio <= target.bound if target.at_most else ratio >= target.bound
    return Verdict(target.text, f"{ratio:.2f} times ({dividend.cpu / divisor.cpu:.2f} of CPU time)", met)


def worst(text, figures, bound):
    """One verdict on figures by name; all that are beyond the bound are named, otherwise the largest."""
    beyond = {name: figure for name, figure in figures.items() if figure > bound}
    named = beyond or dict([max(figures.items(), key=lambda each: each[1])] if figures else [])
    return Verdict(text, ", ".join(f"{figure:.2f} {name}" for name, figure in named.items()), not beyond)


def growth_verdict(measured):
    text = "from 10,000 to 1,000,000 entries the time of every command grows with an exponent of at most 1.1"
    ends = [next((each for each in measured if each.entries == entries), None) for entries in (GROWTH_FROM, GROWTH_TO)]
    if not all(ends):
        return Verdict(text, "", False)
    tools = [name for each in ends for name, figure in each.figures.items() if figure.is_tool]
    exponents = {name: growth(*ends, name) for name in dict.fromkeys(tools)}
    missing = [name for name, exponent in exponents.items() if exponent is None]
    verdict = worst(text, {name: exponent for name, exponent in exponents.items() if exponent is not None},
                    GROWTH_AT_MOST)
    if not missing:
        return verdict
    return Verdict(text, f"{verdict.figure}; not measured: {', '.join(missing)}", False)


def memory_verdict(measured):
    """Only for large pairs: beside small files the program itself counts. What failed may have wanted more."""
    text = "peak memory of every command is at most 3 times the size of both files"
    failures = [failure for each in measured if each.entries >= TARGET_SIZE for failure in each.failures]
    if failures:
        return Verdict(text, f"{len(failures)} failed", False)
    times = {f"{name} ({each.entries:,} entries)": figure.peak / each.pair_size
             for each in measured if each.entries >= TARGET_SIZE
             for name, figure in each.figures.items() if figure.is_tool}
    return worst(text, times, MEMORY_AT_MOST)


def start_verdict(start):
    times = {name: time / start["one line"] for name, time in start.items() if name != "one line"}
    return worst("plan on a shipped example takes at most 5 times a program that prints one line", times,
                 START_AT_MOST)


def verdicts(measured, start):
    return [*(ratio_verdict(target, measured) for target in RATIOS), growth_verdict(measured),
            memory_verdict(measured), start_verdict(start)]
