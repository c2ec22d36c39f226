"""How long `cfgmig plan` takes on the shipped examples, against a program that prints one line."""
import os
import statistics


def examples(directory):
    """The pairs, by the version of the old server."""
    found = {}
    for version in sorted(os.listdir(directory)):
        old, new = (os.path.join(directory, version, name) for name in ("old.ldif", "new.ldif"))
        if os.path.exists(old) and os.path.exists(new):
            found[version] = (old, new)
    return found


def measure(runner, paths, directory, runs):
    """Wall times in seconds by name; "one line" is the program to compare with. It and the plans take turns."""
    pairs = examples(directory)
    times = {"one line": [], **{f"plan {version}": [] for version in pairs}}
    for _ in range(runs):
        times["one line"].append(runner.run([paths["one_line"]]).wall)
        for version, (old, new) in pairs.items():
            times[f"plan {version}"].append(runner.run([paths["cfgmig"], "plan", "--old", old, "--new", new]).wall)
    return {name: statistics.median(each) for name, each in times.items()}
