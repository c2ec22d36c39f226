#!/usr/bin/env python3
"""Proves what the pages of the project show: every block is run, compiled, configured, read or compared.

Usage: run.py --source DIRECTORY --build DIRECTORY --tool FILE --compiler FILE [--flags FLAGS] [--renew] [PAGE...]
Without pages, all Markdown of the project but the changelog. Ends with the number of blocks of each kind, and with
those that are not run and why. The exit status is 1 when a page says something that is not so. With --renew, commands
of which a page shows what they do not write any more are given their new output there; read the difference before you
keep it.
"""
import argparse
import collections
import concurrent.futures
import glob
import json
import os
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

import compiled  # noqa: E402  nothing is to be written into the source directory
import comparing  # noqa: E402
import links  # noqa: E402
import sessions  # noqa: E402
from reading import Mistake, blocks, renewed  # noqa: E402
from scratch import Scratch  # noqa: E402

PAGES = ("*.md", "docs/**/*.md", "examples/**/*.md", "interfaces/*.md", "fuzz/*.md", "bench/*.md")
NOT_A_PAGE = ("CHANGELOG.md",)
LANGUAGES = ("sh", "console", "cpp", "cmake", "json", "ldif", "text")


def pages_of(source):
    found = {os.path.relpath(path, source) for each in PAGES
             for path in glob.glob(os.path.join(source, each), recursive=True)}
    return sorted(found.difference(NOT_A_PAGE))


def check_excerpt(block, source):
    path = block.said["part of"]
    try:
        with open(os.path.join(source, path), encoding="utf-8") as file:
            lines = [line.rstrip() for line in file]
    except OSError as error:
        raise Mistake(f"{block.place}: {error}") from error
    wanted = [line.rstrip() for line in block.lines]
    if not comparing.matches(["...", *wanted, "..."], lines):
        raise Mistake(f"{block.place}: these lines are not in {path}, in this order")


def check_ldif(block, scratch):
    name = block.said.get("file", f"block-{block.line}.ldif")
    scratch.write(name, block.text)
    status, written = scratch.run(f"cfgmig check {name}")
    if status != 0:
        raise Mistake(f"{block.place}: this is no LDIF\n{written}")


def check_json(block, _):
    try:
        json.loads(block.text)
    except ValueError as error:
        raise Mistake(f"{block.place}: this is no JSON: {error}") from error


def needs_a_word(block, _):
    raise Mistake(f"{block.place}: text has to say where it is from: part of, output of, file or not run")


BY_LANGUAGE = {
    "sh": sessions.run_commands,
    "console": sessions.run_session,
    "cpp": compiled.compile_block,
    "cmake": compiled.configure_block,
    "ldif": check_ldif,
    "json": check_json,
    "text": needs_a_word,
}


def check(block, scratch):
    """What was done with the block, in a word or two."""
    if block.language not in LANGUAGES:
        raise Mistake(f"{block.place}: a block of \"{block.language}\"; known are {', '.join(LANGUAGES)}")
    if "not run" in block.said:
        return "not run"
    if "part of" in block.said:
        check_excerpt(block, scratch.settings.source)
        return "excerpt"
    if "file" in block.said:
        scratch.write(block.said["file"], block.text)
    if "output of" in block.said:
        sessions.compare_output(block, scratch)
        return "output"
    if block.language != "text" or "file" not in block.said:
        BY_LANGUAGE[block.language](block, scratch)
    return block.language


def check_page(page, settings, tool):
    done, mistakes = [], []
    with open(os.path.join(settings.source, page), encoding="utf-8") as file:
        text = file.read()
    try:
        found, prose = blocks(page, text)
    except Mistake as mistake:
        return [], [str(mistake)]
    mistakes += links.broken_links(settings.source, page, prose)
    mistakes += links.untrue_commands(settings.source, tool, page, links.commands_in(prose, found))
    with Scratch(settings) as scratch:
        for block in found:
            try:
                done.append((check(block, scratch), block))
            except (Mistake, subprocess.TimeoutExpired) as mistake:
                mistakes.append(str(mistake))
    if settings.renew:
        with open(os.path.join(settings.source, page), "w", encoding="utf-8") as file:
            file.write(renewed(text, found))
    return done, mistakes


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--source", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flags", default="")
    parser.add_argument("--renew", action="store_true")
    parser.add_argument("pages", nargs="*")
    return parser.parse_args()


def main():
    settings = arguments()
    prefix = tempfile.mkdtemp(prefix="docs-prefix-")
    try:
        settings.prefix = prefix
        for component in ("libraries", "development"):
            subprocess.run(["cmake", "--install", settings.build, "--prefix", prefix, "--component", component],
                           stdout=subprocess.DEVNULL, check=True)
        tool = links.Tool(settings.tool)
        pages = settings.pages or pages_of(settings.source)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as several:
            results = list(several.map(lambda page: check_page(page, settings, tool), pages))
    finally:
        shutil.rmtree(prefix)
    done = [each for result in results for each in result[0]]
    mistakes = [each for result in results for each in result[1]]
    for kind, number in sorted(collections.Counter(kind for kind, _ in done).items()):
        print(f"{number:4} {kind}")
    for kind, block in done:
        if kind == "not run":
            print(f"not run: {block.place}: {block.said['not run']}")
    for mistake in mistakes:
        print(f"\nWRONG {mistake}")
    if not done:
        print("no block was found")
    return 1 if mistakes or not done else 0


if __name__ == "__main__":
    sys.exit(main())
