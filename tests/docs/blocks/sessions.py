"""Runs what a page has its reader type.

A block of "sh" is commands; each has to succeed. A block of "console" is a session: a line that begins with "$ " is a
command (with a backslash at its end it goes on), and what follows up to the next one is what the command writes, errors
included. A command that fails is followed by "$ echo $?", so that the reader sees that it did.
"""
import shlex

import comparing
from reading import Mistake

MARK = "\x01"


def commands_of(block):
    """The session as a list of (line number, command, output lines)."""
    session = []
    lines = iter(enumerate(block.lines, block.line + 1))
    for number, line in lines:
        if line.startswith("$ "):
            command = line[2:]
            while command.endswith("\\"):
                command += "\n" + next(lines)[1].removeprefix("> ")
            session.append((number, command, []))
        elif session:
            session[-1][2].append(line)
        else:
            raise Mistake(f"{block.place}: a session begins with a command")
    if not session:
        raise Mistake(f"{block.place}: a session without a command")
    return session


def run_session(block, scratch):
    session = commands_of(block)
    script = "".join(f"{command}\nstatus=$?; printf '\\n{MARK}%s\\n' $status; (exit $status)\n"
                     for _, command, _ in session)
    _, written = scratch.run(script)
    answers = written.split("\n" + MARK)
    if len(answers) != len(session) + 1:
        raise Mistake(f"{block.place}: the session ended before its last command:\n{written}")
    output = answers[0]
    renewed = []
    for at, (number, command, shown) in enumerate(session):
        status, _, following = answers[at + 1].partition("\n")
        lines = output.split("\n")
        if lines[-1] == "":
            lines.pop()
        different = comparing.difference(shown, lines)
        if different and not scratch.settings.renew:
            raise Mistake("\n".join([f"{block.page}:{number}: {command}", *different]))
        renewed += [*("$ " + command).split("\n"), *(lines if different else shown)]
        told = at + 1 < len(session) and session[at + 1][1].startswith("echo $?")
        if status != "0" and not told:
            raise Mistake(f"{block.page}:{number}: {command}\nended with {status}, and the page does not tell")
        output = following
    block.renewed = renewed


def run_commands(block, scratch):
    wanted = int(block.said.get("ends with", "0"))
    status, written = scratch.run("set -e\n" + block.text)
    if status != wanted:
        raise Mistake(f"{block.place}: the commands ended with {status} instead of {wanted}\n{written}")


def compare_output(block, scratch):
    command = block.said["output of"]
    wanted = int(block.said.get("ends with", "0"))
    status, written = scratch.run(command, errors_too=False)
    if status != wanted:
        raise Mistake(f"{block.place}: {command}\nended with {status} instead of {wanted}")
    if block.language == "json":
        different = comparing.json_difference(block.text, written)
    else:
        different = comparing.difference(block.lines, written.splitlines())
    if different and scratch.settings.renew:
        block.renewed = written.splitlines()
    elif different:
        raise Mistake("\n".join([f"{block.place}: {command}", *different]))


def words_of(command):
    """The words of a command line, or nothing when it is not one."""
    try:
        return shlex.split(command, comments=True)
    except ValueError:
        return []
