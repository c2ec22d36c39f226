"""Runs a program once as a whole process and tells what it took."""
import contextlib
import dataclasses
import os
import re
import signal
import subprocess


@dataclasses.dataclass(frozen=True)
class Run:
    wall: float  # seconds from before the start to after the end
    cpu: float  # seconds of user and system time
    peak: int  # bytes in memory at most, mapped files included
    status: int  # 128 and the signal's number for a program that was killed


class Failed(Exception):
    """A program that did not end as expected; the text says which, how, and what it had to say."""


class Runner:
    """Programs write to /dev/null what they answer; files that they are asked for are written."""

    def __init__(self, run_timed, directory, environment, memory, timeout):
        self._run_timed = run_timed
        self._directory = directory
        self._environment = {**os.environ, **environment}
        self._memory = memory  # MiB of address space, 0 for no limit
        self._timeout = timeout  # seconds

    def run(self, arguments, expected=(0,)):
        result = os.path.join(self._directory, "run")
        with contextlib.suppress(FileNotFoundError):
            os.remove(result)
        with open(os.path.join(self._directory, "stderr"), "w+b") as errors:
            process = subprocess.Popen([self._run_timed, result, str(self._memory), *map(str, arguments)],
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=errors,
                                       env=self._environment, start_new_session=True)
            try:
                process.wait(self._timeout)
            except BaseException as error:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                if isinstance(error, subprocess.TimeoutExpired):
                    raise Failed(f"{shown(arguments)}: not done after {self._timeout} s") from error
                raise
            errors.seek(0)
            said = errors.read(2000).decode(errors="replace").strip()
        if process.returncode != 0:
            raise Failed(shown(arguments, said))
        with open(result, encoding="ascii") as file:
            wall, user, system, peak, status = file.read().split()
        if int(status) not in expected:
            raise Failed(shown(arguments, f"status {status}; {said}"))
        return Run(float(wall), float(user) + float(system), int(peak) * 1024, int(status))


def shown(arguments, said=""):
    """A command, and what it had to say, without the directories of this machine."""
    text = " ".join(map(str, arguments)) + (f": {said}" if said else "")
    return re.sub(r"/[^\s:]*/", "", text)
