"""Runs the table of programs on one pair, round after round."""
import contextlib
import dataclasses
import os
import statistics
import sys

import programs
from process import Failed

# A program is not run again once its runs have taken this long, in seconds: what is that slow needs no second decimal.
ENOUGH = 45

# A run that takes less, in seconds, follows one that is not measured.
SHORT = 20


@dataclasses.dataclass(frozen=True)
class Figure:
    """What one program took on one pair, in seconds and bytes."""
    runs: list
    is_tool: bool

    @property
    def wall(self):
        return statistics.median(run.wall for run in self.runs)

    @property
    def cpu(self):
        return statistics.median(run.cpu for run in self.runs)

    @property
    def peak(self):
        return max(run.peak for run in self.runs)

    @property
    def spread(self):
        return min(run.wall for run in self.runs), max(run.wall for run in self.runs)


@dataclasses.dataclass
class Measured:
    """All figures of one pair."""
    entries: int
    pair_size: int
    figures: dict  # name of the step -> Figure
    left_out: list  # names
    failures: list  # texts


def prepare(step, files):
    for path in step.out:
        with contextlib.suppress(FileNotFoundError):
            os.remove(path)
    if step.needs_fresh_target:
        files.fresh_target()
    if step.writes:
        files.settle()


def run_warm(runner, step, files, last):
    """One run, right behind one that is not measured. Memory that was freed some seconds ago may have gone back from a
    virtual machine to its host, and to get it again can take as long as a short program works. `last` is the run before,
    if there was one: what takes long is not run twice, nor is what changes the files that another program has left."""
    if (last is None or last.wall < SHORT) and not (step.after and step.writes):
        prepare(step, files)
        first = runner.run(step.arguments)
        if first.wall >= SHORT:
            return first
    prepare(step, files)
    return runner.run(step.arguments)


def measure(runner, paths, files, rounds, with_slow, left_out=()):
    """All programs in turn, `rounds` times, so that what else the machine does meets all of them."""
    steps = programs.steps(paths, files)
    unknown = set(left_out) - {step.name for step in steps}
    if unknown:
        raise Failed(f"no program is called {', '.join(sorted(unknown))}")
    runs = {step.name: [] for step in steps
            if (with_slow or not step.slow) and step.name not in left_out}
    failures = {}
    for number in range(rounds):
        done = set()
        for step in steps:
            if step.name not in runs or step.name in failures or (step.after and step.after not in done):
                continue
            if sum(run.wall for run in runs[step.name]) > ENOUGH:
                continue
            try:
                run = run_warm(runner, step, files, runs[step.name][-1] if runs[step.name] else None)
                runs[step.name].append(run)
                done.add(step.name)
                print(f"  {files.entries:,} entries, {number + 1} of {rounds}, {step.name}: {run.wall:.3f} s",
                      file=sys.stderr)
            except Failed as error:
                failures[step.name] = str(error)
                print(f"  FAILED {error}", file=sys.stderr)
    figures = {step.name: Figure(runs[step.name], step.is_tool) for step in steps if runs.get(step.name)}
    left_out = [step.name for step in steps if step.name not in runs]
    return Measured(files.entries, files.pair_size(), figures, left_out, list(failures.values()))
