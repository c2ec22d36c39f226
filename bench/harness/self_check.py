"""Checks on a small pair that the generator keeps its promise and that every program does what it is measured for: a
program that does nothing would be the fastest of all."""
import io
import os
import re
import subprocess
import unittest

import programs
import targets_test
from ldif_content import content, names

ENTRIES = 300


class Wrong(Exception):
    """A program that did not do its work."""


def expect(holds, what):
    if not holds:
        raise Wrong(what)


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def answer(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def check_pair(paths, files, old, new):
    again = files.path("again.old"), files.path("again.new")
    answer(paths["generate_pair"], str(files.entries), "1", *again)
    expect([bytes_of(path) for path in again] == [old, new], "generate_pair: two runs give different files")
    for data in (old, new):
        for kind, pattern in {"comments": rb"^# ", "folded values": rb"^ ", "values in base64": rb"^[\w-]+:: "}.items():
            found = len(re.findall(pattern, data, re.MULTILINE))
            expect(found > files.entries // 10, f"generate_pair: hardly any {kind}")
    spellings = [set(re.findall(rb"^dn: (.*)$", data, re.MULTILINE)) for data in (old, new)]
    expect(len(spellings[0] - spellings[1]) > files.entries // 5, "generate_pair: DNs are spelled the same")
    sides = content(old), content(new)
    share = {
        "on the old side only": (5, len(sides[0].keys() - sides[1].keys())),
        "on the new side only": (5, len(sides[1].keys() - sides[0].keys())),
        "changed": (10, sum(sides[0][dn] != sides[1][dn] for dn in sides[0].keys() & sides[1].keys())),
    }
    for kind, (percent, count) in share.items():
        wanted = files.entries * percent / 100
        expect(wanted / 2 < count < wanted * 1.6, f"generate_pair: {count} of {files.entries} entries are {kind}")


def check_differences(paths, files, old, new):
    differing = {dn for dn in old.keys() | new.keys() if old.get(dn) != new.get(dn)}
    pair = ["difference", files.old, files.new]
    for program in ([paths["ldap_reader"]], [programs.PYTHON, paths["ldif_modlist.py"]],
                    [programs.PERL, paths["net_ldap_ldif.pl"]]):
        expect(names(answer(*program, *pair)) == differing, f"{program[-1]} difference names other entries")
    left = names(answer(paths["cfgmig"], "compare", "--old", files.old, "--new", files.new))
    expect(left == differing & old.keys(), "cfgmig compare leaves other entries")


def check_merges(paths, files, old, new):
    wanted = {dn: old.get(dn, set()) | new.get(dn, set()) for dn in old.keys() | new.keys()}
    out = files.path("merged.conf")
    for program in ([paths["ldap_reader"]], [programs.PYTHON, paths["ldif_modlist.py"]],
                    [programs.PERL, paths["net_ldap_ldif.pl"]]):
        answer(*program, "merge", files.old, files.new, out)
        expect(content(bytes_of(out)) == wanted, f"{program[-1]} merge gives another content")


def check_tool(runner, paths, files, old, new):
    """The tool's own audit looks at values; here only that all entries are there, and that undo puts the bytes back."""
    files.fresh_target()
    pair = ["--old", files.old, "--new", files.target]
    runner.run([paths["cfgmig"], "apply", *pair])
    expect(content(bytes_of(files.target)).keys() == old.keys() | new.keys(), "cfgmig apply gives other entries")
    runner.run([paths["cfgmig"], "verify", "--old", files.old, "--before", files.new, "--result", files.target])
    runner.run([paths["cfgmig"], "undo", files.target])
    expect(bytes_of(files.target) == bytes_of(files.new), "cfgmig undo gives another file")


def check_limit(paths, files, data):
    out = files.path("limit.conf")
    lines = sum(each.count(b"\n") for each in data)
    for mode in ([], ["--plainly"]):
        for arguments in ([], [out]):
            said = answer(paths["physical_limit"], *mode, files.old, files.new, *arguments)
            expect(said.startswith(b"%d lines" % lines), "physical_limit has not seen every line")
        expect(bytes_of(out) == data[1], "physical_limit wrote something else")
        os.remove(out)


def check_verdicts():
    said = io.StringIO()
    tests = unittest.defaultTestLoader.loadTestsFromModule(targets_test)
    result = unittest.TextTestRunner(stream=said).run(tests)
    expect(result.wasSuccessful() and result.testsRun > 5, f"verdicts are not what the figures say: {said.getvalue()}")


def check(runner, paths, files):
    check_verdicts()
    data = bytes_of(files.old), bytes_of(files.new)
    old, new = (content(each) for each in data)
    check_pair(paths, files, *data)
    check_limit(paths, files, data)
    check_differences(paths, files, old, new)
    check_merges(paths, files, old, new)
    check_tool(runner, paths, files, old, new)
