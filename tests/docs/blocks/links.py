"""Looks at what pages name outside of blocks: files that they link to, headings, scripts, commands and options."""
import os
import re
import subprocess

from sessions import words_of

LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`]+)`")


def anchors(text):
    """The names under which headings of a page can be linked to."""
    without_blocks = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    headings = re.findall(r"^#+ +(.*?) *$", without_blocks, flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_links(source, page, prose):
    for number, line in prose:
        for target in LINK.findall(CODE.sub("", line) if "](" not in line else line):
            if re.match(r"[a-z]+:", target):
                continue
            path, _, anchor = target.partition("#")
            full = os.path.normpath(os.path.join(source, os.path.dirname(page), path or os.path.basename(page)))
            if not os.path.exists(full):
                yield f"{page}:{number}: links to {path}, which is not there"
            elif anchor and full.endswith(".md"):
                with open(full, encoding="utf-8") as file:
                    if anchor not in anchors(file.read()):
                        yield f"{page}:{number}: links to the heading #{anchor}, which is not there"


class Tool:
    """What cfgmig says about itself."""

    def __init__(self, path):
        self.path = path
        self.helps = {}
        self.commands = set(re.findall(r"^  ([a-z]+)  ", self.help().split("\nCommands:", 1)[1].split("\n\n")[0], re.M))

    def help(self, *command):
        if command not in self.helps:
            self.helps[command] = subprocess.run([self.path, "help", *command], capture_output=True, text=True,
                                                 check=True).stdout
        return self.helps[command]

    def mistakes(self, words):
        """What is wrong with the words behind cfgmig; these may be a part of a command line only."""
        if not words or not re.fullmatch(r"[a-z]+", words[0]):
            return
        if words[0] not in self.commands:
            yield f"there is no command {words[0]}"
            return
        options = set(re.findall(r"(?<![\w-])--?[a-z][a-z-]*", self.help(words[0])))
        for word in words[1:]:
            if word in ("|", "&&", "||", ";", ">"):
                return
            option = word.split("=")[0]
            if re.fullmatch(r"--[a-z-]+|-[a-z]", option) and option not in options:
                yield f"{words[0]} has no option {option}"


def untrue_commands(source, tool, page, command_lines):
    """The command lines are (number, text)."""
    for number, text in command_lines:
        words = words_of(text)
        if not words:
            continue
        if re.fullmatch(r"(\./)?scripts/[\w-]+", words[0]) and not os.access(os.path.join(source, words[0]), os.X_OK):
            yield f"{page}:{number}: there is no {words[0]}"
        if words[0] in ("cfgmig", "scripts/cfgmig"):
            for mistake in tool.mistakes(words[1:]):
                yield f"{page}:{number}: {mistake}: {text}"


def commands_in(prose, found):
    """Whatever may be a command line: code within the prose, and the lines of blocks that are not run."""
    for number, line in prose:
        for code in CODE.findall(line):
            yield number, code
    for block in found:
        if "not run" in block.said:
            text = re.sub(r"\\\n", lambda match: "  ", block.text)
            for line in text.split("\n"):
                yield block.line, line.strip().removeprefix("$ ")
