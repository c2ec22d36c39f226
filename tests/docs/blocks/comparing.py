"""Compares what a page shows with what a command has written.

The same but for what is different each time and on each machine:

    times                  20261121-162803 and 2026-11-21T16:28:03Z are any time
    durations              12 ms, 0.3 s are any duration
    SHA-256                64 hexadecimal digits are any others
    the directory          pages write /srv/move where the test has its scratch directory, and PREFIX where it has
                           the installed libraries
    a line of three dots   stands for any lines, or none
"""
import difflib
import json
import re

SHOWN_DIRECTORY = "/srv/move"
RULES = (
    (re.compile(r"\b\d{8}-\d{6}\b"), "TIME"),
    (re.compile(r"\b\d{4}-\d\d-\d\d[T ]\d\d:\d\d:\d\d(\.\d+)?Z?"), "TIME"),
    (re.compile(r"\b\d+(\.\d+)? (ms|s|seconds)\b"), "DURATION"),
    (re.compile(r"\b[0-9a-f]{64}\b"), "SHA-256"),
    (re.compile(r"[ \t]+$"), ""),
)


def normal(line):
    for pattern, instead in RULES:
        line = pattern.sub(instead, line)
    return line


def is_gap(line):
    return line.strip() in ("...", "// ...", "# ...")


def matches(shown, written):
    """Whether the lines that are shown are those that were written, gaps aside."""
    positions = {0}  # how many of the written lines can have been used up
    for line in shown:
        if is_gap(line):
            positions = set(range(min(positions), len(written) + 1)) if positions else positions
        else:
            positions = {at + 1 for at in positions if at < len(written) and written[at] == line}
    return len(written) in positions


def difference(shown, written):
    """Nothing when they agree, otherwise what differs, as lines to show to a person."""
    shown, written = [normal(line) for line in shown], [normal(line) for line in written]
    if matches(shown, written):
        return []
    return list(difflib.unified_diff(shown, written, "the page", "the command", n=2, lineterm=""))


def json_difference(shown, written):
    """The same for JSON, whose blanks and line ends do not count."""
    def lines(text):
        try:
            return json.dumps(json.loads(text), indent=1).splitlines()
        except ValueError as error:
            return [f"no JSON: {error}"]

    return difference(lines(shown), lines(written))
