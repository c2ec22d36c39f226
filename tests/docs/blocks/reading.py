"""Finds the fenced blocks of a Markdown page, and what the page says about each of them.

A block is opened by three backticks and its language. A comment in front of it tells what else is to be known:

    <!-- block: not run, REASON -->     a block that a test cannot run; the reason is for whoever asks why
    <!-- block: file NAME -->           its content is written to NAME in the scratch directory
    <!-- block: part of PATH -->        its lines stand in the file PATH of the project, in this order; a line of dots
                                        stands for lines that are left out
    <!-- block: output of COMMAND -->   its content is what the command writes
    <!-- block: ends with STATUS -->    the exit status of the command; 0 where nothing is said

A comment that begins with "block:" and is none of these, or that no block follows, is a mistake.
"""
import dataclasses
import re

FENCE = re.compile(r"^( *)(`{3,}|~{3,})\s*(.*?)\s*$")
COMMENT = re.compile(r"^\s*<!--\s*block:\s*(.*?)\s*-->\s*$")
KINDS = ("not run", "file", "part of", "output of", "ends with")


class Mistake(Exception):
    """Something in a page that is not as it should be."""


@dataclasses.dataclass
class Block:
    page: str
    line: int  # of the opening fence, counted from 1
    language: str
    lines: list
    said: dict  # what the comments in front of it say: kind -> the rest
    renewed: list = None  # what its lines should be, once it was run

    @property
    def place(self):
        return f"{self.page}:{self.line}"

    @property
    def text(self):
        return "".join(line + "\n" for line in self.lines)


def renewed(text, found):
    """The text of the page, with the lines that its blocks should have."""
    lines = text.split("\n")
    for block in reversed(found):
        if block.renewed is not None and block.renewed != block.lines:
            indent = re.match(" *", lines[block.line - 1]).group()
            lines[block.line:block.line + len(block.lines)] = [(indent + line).rstrip() for line in block.renewed]
    return "\n".join(lines)


def understood(place, comment):
    for kind in KINDS:
        if comment == kind or comment.startswith((kind + " ", kind + ",")):
            rest = comment[len(kind):].lstrip(" ,").strip()
            if not rest:
                raise Mistake(f"{place}: \"{kind}\" says no more")
            return kind, rest
    raise Mistake(f"{place}: a comment about a block that nobody understands: {comment}")


def blocks(page, text):
    """All blocks of a page, and the lines of it that are in none, each as (number, line)."""
    found, prose, said, said_at = [], [], {}, 0
    lines = text.split("\n")
    number = 0
    while number < len(lines):
        line = lines[number]
        number += 1
        fence = FENCE.match(line)
        comment = COMMENT.match(line)
        if comment:
            kind, rest = understood(f"{page}:{number}", comment.group(1))
            said[kind], said_at = rest, number
        elif fence:
            indent, mark, language = fence.groups()
            opened, content = number, []
            while number < len(lines) and lines[number].strip() != mark:
                content.append(lines[number][len(indent):] if lines[number].startswith(indent) else lines[number])
                number += 1
            if number == len(lines):
                raise Mistake(f"{page}:{opened}: the block has no end")
            number += 1
            found.append(Block(page, opened, language, content, said))
            said = {}
        else:
            prose.append((number, line))
            if line.strip() and said:
                raise Mistake(f"{page}:{said_at}: no block follows this comment")
    if said:
        raise Mistake(f"{page}:{said_at}: no block follows this comment")
    return found, prose
