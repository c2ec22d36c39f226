"""The result of one run as Markdown, and as JSON with every single run."""
import dataclasses
import json

import programs
import targets


def milliseconds(seconds):
    return f"{seconds * 1000:,.1f}" if seconds < 1 else f"{seconds * 1000:,.0f}"


def table(head, rows):
    yield "| " + " | ".join(head) + " |"
    yield "|---" + "|---:" * (len(head) - 1) + "|"
    for row in rows:
        yield "| " + " | ".join(row) + " |"
    yield ""


def times(figure, base):
    return f"{figure.wall / base.wall:.2f}" if base else "-"


def size_table(measured):
    read, write = (measured.figures.get(name) for name in (programs.LIMIT_READ, programs.LIMIT_WRITE))
    yield f"## {measured.entries:,} entries, {measured.pair_size / 1e6:,.1f} MB both files"
    yield ""
    rows = [[name, str(len(figure.runs)), milliseconds(figure.wall),
             " to ".join(milliseconds(each) for each in figure.spread), milliseconds(figure.cpu), times(figure, read),
             times(figure, write), f"{figure.peak / 2**20:,.0f}", f"{figure.peak / measured.pair_size:.2f}"]
            for name, figure in measured.figures.items()]
    yield from table(["program", "runs", "ms, median", "from, to", "ms of CPU", "times limit: read",
                      "times limit: read and write", "peak MiB", "times both files"], rows)
    if measured.left_out:
        yield f"Left out: {', '.join(measured.left_out)}."
        yield ""
    for failure in measured.failures:
        yield f"Failed: `{failure.splitlines()[0]}`"
        yield ""


def exponent(smaller, larger, name):
    by_wall, by_cpu = (targets.growth(smaller, larger, name, what) for what in ("wall", "cpu"))
    return "-" if by_wall is None else f"{by_wall:.2f} ({by_cpu:.2f})"


def growth_table(measured):
    pairs = list(zip(measured, measured[1:]))
    if len(measured) > 2:
        pairs.append((measured[1], measured[-1]))
    if not pairs:
        return
    yield "## Growth"
    yield ""
    yield "The exponent of time between two sizes, 1 being proportional; in parentheses that of CPU time."
    yield ""
    names = dict.fromkeys(name for each in measured for name in each.figures)
    head = ["program", *(f"{smaller.entries:,} to {larger.entries:,}" for smaller, larger in pairs)]
    yield from table(head, [[name, *(exponent(*pair, name) for pair in pairs)] for name in names])


def start_table(start, runs):
    yield "## Start"
    yield ""
    yield f"Medians of {runs} runs each, in turns."
    yield ""
    rows = [[name, f"{time * 1000:.2f}", f"{time / start['one line']:.2f}"] for name, time in start.items()]
    yield from table(["program", "ms", "times one line"], rows)


def markdown(when, machine, measured, start, start_runs, verdicts):
    lines = [f"# {when:%Y-%m-%d %H:%M}", ""]
    lines += [f"- {name}: {value}" for name, value in machine.items()]
    lines += ["", "## Targets", "", *(f"- {verdict}" for verdict in verdicts), ""]
    for each in measured:
        lines += size_table(each)
    lines += growth_table(measured)
    lines += start_table(start, start_runs)
    return "\n".join(lines).rstrip() + "\n"


def as_json(when, machine, measured, start, verdicts):
    return json.dumps({
        "time": when.isoformat(timespec="seconds"),
        "machine": machine,
        "sizes": [{"entries": each.entries, "bytes": each.pair_size, "left_out": each.left_out,
                   "failures": each.failures,
                   "programs": {name: [dataclasses.asdict(run) for run in figure.runs]
                                for name, figure in each.figures.items()}} for each in measured],
        "start": start,
        "targets": [dataclasses.asdict(verdict) for verdict in verdicts],
    }, indent=1) + "\n"
